#include "decoding/JpegReader.h"

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <unistd.h>

#include <jerror.h>

#include "base/Cancellation.h"
#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

// Encoders write ten to twenty scans. Every scan visits every block, so that a large picture is allowed
// fewer: about as much work as a hundred scans of 24 megapixels.
constexpr qint64 mostScans = 100;
constexpr qint64 fewestScans = 24;
constexpr qint64 mostScannedPixels = 2'400'000'000;

constexpr int endOfImage = 0xd9;
/// A segment's length has 16 bits.
constexpr unsigned int longestSegment = 0xffff;

} // namespace

JpegReader::JpegReader(const ImageFile &file, const std::stop_token &stop, std::initializer_list<int> kept)
{
    if (!file.isInMemory()) {
        m_stream = fdopen(fcntl(file.descriptor(), F_DUPFD_CLOEXEC, 0), "rb");
        if (m_stream == nullptr || std::fseek(m_stream, 0, SEEK_SET) != 0) {
            throw ImageError(ImageError::Cause::Missing, "cannot be read");
        }
    }
    m_info.err = jpeg_std_error(&m_errors.manager);
    m_errors.manager.error_exit = &JpegReader::leave;
    m_errors.manager.emit_message = &JpegReader::warn;
    m_progress.manager.progress_monitor = &JpegReader::step;
    m_progress.stop = &stop;
    m_info.client_data = this;
    try {
        run([this, kept, &file] {
            jpeg_create_decompress(&m_info);
            m_info.progress = &m_progress.manager;
            if (m_stream != nullptr) {
                jpeg_stdio_src(&m_info, m_stream);
            } else {
                jpeg_mem_src(&m_info, reinterpret_cast<const uchar *>(file.bytes().constData()),
                             static_cast<unsigned long>(file.size()));
            }
            for (const int marker : kept) {
                jpeg_save_markers(&m_info, marker, longestSegment);
            }
            jpeg_read_header(&m_info, TRUE);
        });
    } catch (...) {
        close();
        throw;
    }
}

JpegReader::~JpegReader()
{
    close();
}

void JpegReader::close()
{
    jpeg_destroy_decompress(&m_info);
    if (m_stream != nullptr) {
        std::fclose(m_stream);
    }
}

void JpegReader::leave(j_common_ptr info)
{
    std::longjmp(static_cast<JpegReader *>(info->client_data)->m_errors.jump, 1);
}

void JpegReader::warn(j_common_ptr info, int level)
{
    if (level >= 0) {
        return;
    }
    const jpeg_error_mgr &errors = *info->err;
    // Some cameras pad the data before the end marker: nothing of the picture is missing.
    const bool padding = errors.msg_code == JWRN_EXTRANEOUS_DATA && errors.msg_parm.i[1] == endOfImage;
    constexpr std::array beside{JWRN_ADOBE_XFORM, JWRN_JFIF_MAJOR, JWRN_BOGUS_ICC};
    if (!padding && std::ranges::find(beside, errors.msg_code) == beside.end()) {
        leave(info);
    }
}

void JpegReader::step(j_common_ptr info)
{
    auto &self = *static_cast<JpegReader *>(info->client_data);
    const qint64 pixels = qint64(self.m_info.image_width) * self.m_info.image_height;
    const qint64 scans = std::clamp(mostScannedPixels / std::max<qint64>(pixels, 1), fewestScans, mostScans);
    self.m_progress.tooManyScans = self.m_info.input_scan_number > scans;
    if (self.m_progress.tooManyScans || self.m_progress.stop->stop_requested()) {
        leave(info);
    }
}

void JpegReader::fail()
{
    throwIfCancelled(*m_progress.stop);
    if (m_progress.tooManyScans) {
        throw ImageError(ImageError::Cause::TooLarge, "too many scans");
    }
    char message[JMSG_LENGTH_MAX] = "";
    m_errors.manager.format_message(reinterpret_cast<j_common_ptr>(&m_info), message);
    const int code = m_errors.manager.msg_code;
    if (code == JERR_IMAGE_TOO_BIG || code == JERR_OUT_OF_MEMORY) {
        throw ImageError(ImageError::Cause::TooLarge, message);
    }
    const bool unsupported = code == JERR_SOF_UNSUPPORTED || code == JERR_BAD_PRECISION ||
                             code == JERR_CONVERSION_NOTIMPL || code == JERR_NOTIMPL;
    throw ImageError(unsupported ? ImageError::Cause::Unsupported : ImageError::Cause::Damaged, message);
}

} // namespace tarnovel
