#pragma once

#include <FileHandling/FileName.h>

#include <cstdint>
#include <fstream>

namespace Orvant {

/// File stream for reading that takes the suite's file names.
///
/// @code
/// OvIfstream in(file, std::ios::in | std::ios::binary);
/// @endcode
class ORVANT_FILEHANDLING_EXPORT OvIfstream : public std::ifstream {
public:
    /// Opens the file; is_open() tells whether that succeeded.
    /// @throws FileNameException for a name that no file system could hold
    explicit OvIfstream(const FileName& file, std::ios::openmode mode = std::ios::in);
    ~OvIfstream() override;
};

/// File stream for writing that takes the suite's file names.
///
/// @code
/// OvOfstream out(file, std::ios::out | std::ios::trunc, OvOfstream::NoByteOrderMark);
/// @endcode
class ORVANT_FILEHANDLING_EXPORT OvOfstream : public std::ofstream {
public:
    /// What the stream writes by itself before anything else.
    enum ByteOrderMark : std::uint32_t {
        NoByteOrderMark = 0,  ///< nothing
        Utf8ByteOrderMark = 1 ///< the bytes EF BB BF
    };

    /// Opens the file; is_open() tells whether that succeeded.
    /// @throws FileNameException for a name that no file system could hold
    explicit OvOfstream(const FileName& file, std::ios::openmode mode = std::ios::out,
                        ByteOrderMark byteOrderMark = NoByteOrderMark);
    ~OvOfstream() override;
};

} // namespace Orvant
