#pragma once

#include "editor/render/decoders/DecoderRequest.h"

#include <cstdint>
#include <memory>
#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace framora {

struct AvFree {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
template <typename T> using Av = std::unique_ptr<T, AvFree>;

/// The frames of a QuickTime or MPEG-4 file's first video track, in the order in which they are shown.
class VideoFile {
public:
    /// `descriptor` is an open regular file. isOpen() is false when it has no track that can be decoded.
    /// What is to be reduced far is decoded without smoothing the edges of its blocks.
    explicit VideoFile(int descriptor, const DecoderRequest& request = {});

    bool isOpen() const { return m_codec != nullptr; }
    AVFormatContext* format() const { return m_format.get(); }
    AVStream* stream() const { return m_stream; }

    /// Goes to the last key frame at or before this time of the presentation, in microseconds. From here on
    /// frames that end before it, and that no other frame is built on, are left out.
    bool seek(std::int64_t microseconds);
    /// Null after the last frame.
    Av<AVFrame> nextFrame();

    /// How this frame's time, and its end, compare to one in microseconds: below, at (0) or above.
    int compareStart(const AVFrame& frame, std::int64_t microseconds) const;
    int compareEnd(const AVFrame& frame, std::int64_t microseconds) const;

private:
    bool endsBeforeWanted(const AVPacket& packet) const;
    static int read(void* self, std::uint8_t* data, int size);
    static std::int64_t seekFile(void* self, std::int64_t offset, int whence);
    void chooseStream();
    void openCodec(const DecoderRequest& request);

    int m_descriptor;
    std::int64_t m_position = 0;
    std::int64_t m_size = 0;
    Av<AVIOContext> m_io;
    Av<AVFormatContext> m_format;
    AVStream* m_stream = nullptr;
    Av<AVCodecContext> m_codec;
    Av<AVPacket> m_packet;
    bool m_isDraining = false;
    std::optional<std::int64_t> m_wanted; ///< microseconds
};

} // namespace framora
