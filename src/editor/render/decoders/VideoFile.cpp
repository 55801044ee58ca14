#include "editor/render/decoders/VideoFile.h"

#include "editor/render/decoders/DecoderLimits.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

/// 8K and some more; what a decoder holds at once is many frames.
constexpr std::int64_t maximumFramePixels = std::int64_t(1) << 26;
constexpr int ioBufferBytes = 1 << 16;

} // namespace

VideoFile::VideoFile(int descriptor, const DecoderRequest& request)
    : m_descriptor(descriptor), m_packet(av_packet_alloc()) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0)
        return;
    m_size = status.st_size;
    auto* buffer = static_cast<unsigned char*>(av_malloc(ioBufferBytes));
    m_io.reset(
        avio_alloc_context(buffer, ioBufferBytes, 0, this, &VideoFile::read, nullptr, &VideoFile::seekFile));
    AVFormatContext* format = avformat_alloc_context();
    if (!m_io || !format)
        return;
    format->pb = m_io.get();
    // A cut-off packet would become a torn picture.
    format->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_DISCARD_CORRUPT;
    if (avformat_open_input(&format, nullptr, av_find_input_format("mov"), nullptr) < 0)
        return; // it has freed the context
    m_format.reset(format);
    chooseStream();
    if (m_stream)
        openCodec(request);
}

void VideoFile::chooseStream() {
    constexpr int noVideo = AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        AVStream* stream = m_format->streams[i];
        stream->discard = AVDISCARD_ALL;
        if (stream->codecpar->codec_type != AVMEDIA_TYPE_VIDEO || stream->disposition & noVideo)
            continue;
        const bool isEnabled = stream->disposition & AV_DISPOSITION_DEFAULT;
        if (!m_stream || (isEnabled && !(m_stream->disposition & AV_DISPOSITION_DEFAULT)))
            m_stream = stream;
    }
    if (m_stream)
        m_stream->discard = AVDISCARD_DEFAULT;
}

void VideoFile::openCodec(const DecoderRequest& request) {
    const AVCodec* decoder = avcodec_find_decoder(m_stream->codecpar->codec_id);
    Av<AVCodecContext> codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (!codec || avcodec_parameters_to_context(codec.get(), m_stream->codecpar) < 0)
        return;
    codec->pkt_timebase = m_stream->time_base;
    codec->max_pixels = maximumFramePixels;
    codec->thread_count = request.threads > 0 ? request.threads : decoderThreads();
    constexpr int farReduction = 3; // sides; the blocks are smaller than a pixel of the outcome then
    if (request.reduction(codec->width, codec->height) >= farReduction)
        codec->skip_loop_filter = AVDISCARD_ALL;
    if (avcodec_open2(codec.get(), decoder, nullptr) >= 0)
        m_codec = std::move(codec);
}

int VideoFile::read(void* self, std::uint8_t* data, int size) {
    auto* file = static_cast<VideoFile*>(self);
    ssize_t count = 0;
    do {
        count = pread(file->m_descriptor, data, std::size_t(size), off_t(file->m_position));
    } while (count < 0 && errno == EINTR);
    if (count <= 0)
        return count < 0 ? AVERROR(errno) : AVERROR_EOF;
    file->m_position += count;
    return int(count);
}

std::int64_t VideoFile::seekFile(void* self, std::int64_t offset, int whence) {
    auto* file = static_cast<VideoFile*>(self);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return file->m_size;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        offset += file->m_position;
        break;
    case SEEK_END:
        offset += file->m_size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    return offset < 0 ? AVERROR(EINVAL) : file->m_position = offset;
}

bool VideoFile::seek(std::int64_t microseconds) {
    const std::int64_t time =
        av_rescale_q_rnd(microseconds, AV_TIME_BASE_Q, m_stream->time_base, AV_ROUND_DOWN);
    m_wanted = microseconds;
    return av_seek_frame(m_format.get(), m_stream->index, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

Av<AVFrame> VideoFile::nextFrame() {
    Av<AVFrame> frame(av_frame_alloc());
    while (frame) {
        const int result = avcodec_receive_frame(m_codec.get(), frame.get());
        if (result >= 0)
            return frame;
        if (result == AVERROR_EOF || m_isDraining)
            return nullptr;
        if (av_read_frame(m_format.get(), m_packet.get()) < 0) {
            m_isDraining = true;
            avcodec_send_packet(m_codec.get(), nullptr);
            continue;
        }
        // A damaged packet costs its own frame only.
        if (m_packet->stream_index == m_stream->index) {
            m_codec->skip_frame = endsBeforeWanted(*m_packet) ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
            avcodec_send_packet(m_codec.get(), m_packet.get());
        }
        av_packet_unref(m_packet.get());
    }
    return nullptr;
}

bool VideoFile::endsBeforeWanted(const AVPacket& packet) const {
    return m_wanted && packet.pts != AV_NOPTS_VALUE && packet.duration > 0 &&
           av_compare_ts(packet.pts + packet.duration, m_stream->time_base, *m_wanted, AV_TIME_BASE_Q) <= 0;
}

int VideoFile::compareStart(const AVFrame& frame, std::int64_t microseconds) const {
    return av_compare_ts(frame.best_effort_timestamp, m_stream->time_base, microseconds, AV_TIME_BASE_Q);
}

int VideoFile::compareEnd(const AVFrame& frame, std::int64_t microseconds) const {
    std::int64_t duration = frame.pkt_duration;
    const AVRational rate = m_stream->avg_frame_rate;
    if (duration <= 0 && rate.num > 0 && rate.den > 0)
        duration = av_rescale_q(1, av_inv_q(rate), m_stream->time_base);
    return av_compare_ts(frame.best_effort_timestamp + duration, m_stream->time_base, microseconds,
                         AV_TIME_BASE_Q);
}

} // namespace framora
