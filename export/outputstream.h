// Text written to a device as it is produced, in large pieces, so that an
// export of any size never holds more than one piece in memory.
#pragma once

#include "progress.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstring>
#include <memory>
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

    // Exports write tens of millions of short pieces: a copy into the
    // buffer and nothing else, unless the buffer is full.
    OutputStream& put(const char* text, size_t size)
    {
        if (used_ + size > Piece && !spill(text, size))
            return *this;
        std::memcpy(buffer_.get() + used_, text, size);
        used_ += size;
        return *this;
    }
    OutputStream& operator<<(std::string_view text) { return put(text.data(), text.size()); }
    OutputStream& operator<<(char c) { return put(&c, 1); }
    OutputStream& operator<<(const QByteArray& text) { return put(text.constData(), size_t(text.size())); }
    OutputStream& operator<<(const std::string& text) { return put(text.data(), text.size()); }
    OutputStream& operator<<(const char* text) { return put(text, std::strlen(text)); }
    OutputStream& number(quint64 n);

    // Writes what is buffered; false once any write has failed or the
    // progress asked to stop.
    bool flush();
    bool ok() const { return ok_; }
    // Told the bytes written after each piece; the total is not known.
    void setProgress(Progress progress) { progress_ = std::move(progress); }
    bool stopped() const { return stopped_; }

private:
    // Empties the buffer; false when text went straight to the device.
    bool spill(const char* text, size_t size);

    static constexpr size_t Piece = 1 << 20;
    QIODevice& device_;
    std::unique_ptr<char[]> buffer_;
    size_t used_ = 0;
    bool ok_ = true;
    Progress progress_;
    qint64 written_ = 0;
    bool stopped_ = false;
};

} // namespace kesu::toolvok
