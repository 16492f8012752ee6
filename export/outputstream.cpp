#include "outputstream.h"

#include <QIODevice>

#include <charconv>

namespace kesu::toolvok {

OutputStream::OutputStream(QIODevice& device) : device_(device), buffer_(new char[Piece]) {}

OutputStream& OutputStream::number(quint64 n)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
    return put(digits, size_t(end - digits));
}

bool OutputStream::flush()
{
    if (ok_ && used_ > 0)
        ok_ = device_.write(buffer_.get(), qint64(used_)) == qint64(used_);
    written_ += qint64(used_);
    used_ = 0;
    if (ok_ && progress_ && !progress_(written_, 0))
        ok_ = false, stopped_ = true;
    return ok_;
}

bool OutputStream::spill(const char* text, size_t size)
{
    flush();
    if (size <= Piece)
        return true;
    if (ok_)
        ok_ = device_.write(text, qint64(size)) == qint64(size);
    written_ += qint64(size);
    return false;
}

} // namespace kesu::toolvok
