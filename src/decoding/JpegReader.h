#pragma once

#include <csetjmp>
#include <cstdio>
#include <initializer_list>
#include <stop_token>

#include <jpeglib.h>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// A libjpeg decompressor of a file, which outlives it, whose errors, and warnings about picture data, leave
/// the call in progress.
class JpegReader {
public:
    /// The segments of the `kept` markers stay in the info's list. `stop` outlives the reader. Throws an
    /// ImageError when the header cannot be read.
    JpegReader(const ImageFile &file, const std::stop_token &stop, std::initializer_list<int> kept = {});
    ~JpegReader();
    JpegReader(const JpegReader &) = delete;
    JpegReader &operator=(const JpegReader &) = delete;

    jpeg_decompress_struct &info() { return m_info; }

    /// Runs `work`, which may call libjpeg and must hold nothing that has a destructor. Throws the ImageError
    /// or OperationCancelled that ended it early.
    template<typename Work>
    void run(Work work)
    {
        if (setjmp(m_errors.jump) == 0) {
            work();
        } else {
            fail();
        }
    }

private:
    struct Errors {
        jpeg_error_mgr manager;
        std::jmp_buf jump;
    };
    struct Progress {
        jpeg_progress_mgr manager;
        const std::stop_token *stop;
        bool tooManyScans;
    };

    static void leave(j_common_ptr info);
    static void warn(j_common_ptr info, int level);
    static void step(j_common_ptr info);
    [[noreturn]] void fail();
    void close();

    jpeg_decompress_struct m_info{};
    Errors m_errors{};
    Progress m_progress{};
    std::FILE *m_stream = nullptr;
};

} // namespace tarnovel
