#include <FileHandling/OvFstream.h>

namespace Orvant {

OvIfstream::OvIfstream(const FileName& file, std::ios::openmode mode)
    : std::ifstream(file.toPath(), mode) {}

OvIfstream::~OvIfstream() = default;

OvOfstream::OvOfstream(const FileName& file, std::ios::openmode mode, ByteOrderMark byteOrderMark)
    : std::ofstream(file.toPath(), mode) {
    if (byteOrderMark == Utf8ByteOrderMark && is_open())
        *this << "\xEF\xBB\xBF";
}

OvOfstream::~OvOfstream() = default;

} // namespace Orvant
