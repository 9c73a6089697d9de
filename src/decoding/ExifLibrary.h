#pragma once

#include <cstdint>

#include <exiv2/exiv2.hpp>

namespace tarnovel {

// What the metadata library calls differently from its version 0.28 on.
#if EXIV2_TEST_VERSION(0, 28, 0)
using ExifIo = Exiv2::BasicIo::UniquePtr;
using ExifImage = Exiv2::Image::UniquePtr;
using ByteCount = size_t;

/// It reads HEIC and AVIF unasked.
inline void readHeifToo() {}

inline int64_t firstWhole(const Exiv2::Value &value)
{
    return value.toInt64(0);
}
#else
using ExifIo = Exiv2::BasicIo::AutoPtr;
using ExifImage = Exiv2::Image::AutoPtr;
using ByteCount = long;

inline void readHeifToo()
{
    Exiv2::enableBMFF(true);
}

inline int64_t firstWhole(const Exiv2::Value &value)
{
    return value.toLong(0);
}
#endif

} // namespace tarnovel
