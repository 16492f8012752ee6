#include "outputstream.h"

#include <QIODevice>

#include <charconv>

namespace kesu::toolvok {

OutputStream::OutputStream(QIODevice& device) : device_(device)
{
    buffer_.reserve(Piece + 4096);
}

OutputStream& OutputStream::number(quint64 n)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
    return *this << std::string_view(digits, size_t(end - digits));
}

bool OutputStream::flush()
{
    if (ok_ && !buffer_.empty())
        ok_ = device_.write(buffer_.data(), qint64(buffer_.size())) == qint64(buffer_.size());
    buffer_.clear();
    return ok_;
}

} // namespace kesu::toolvok
