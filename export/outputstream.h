// Text written to a device as it is produced, in large pieces, so that an
// export of any size never holds more than one piece in memory.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <string>
#include <string_view>

class QIODevice;

namespace kesu::toolvok {

class OutputStream
{
public:
    explicit OutputStream(QIODevice& device);
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    OutputStream& operator<<(std::string_view text)
    {
        buffer_.append(text);
        return spill();
    }
    OutputStream& operator<<(char c)
    {
        buffer_.push_back(c);
        return spill();
    }
    OutputStream& operator<<(const QByteArray& text) { return *this << std::string_view(text.constData(), size_t(text.size())); }
    OutputStream& operator<<(const std::string& text) { return *this << std::string_view(text); }
    OutputStream& operator<<(const char* text) { return *this << std::string_view(text); }
    OutputStream& number(quint64 n);

    // Writes what is buffered; false once any write has failed.
    bool flush();

private:
    OutputStream& spill()
    {
        if (buffer_.size() >= Piece)
            flush();
        return *this;
    }

    static constexpr size_t Piece = 1 << 20;
    QIODevice& device_;
    std::string buffer_;
    bool ok_ = true;
};

} // namespace kesu::toolvok
