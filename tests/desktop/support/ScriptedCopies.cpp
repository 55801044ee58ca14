#include "desktop/support/ScriptedCopies.h"

#include <cstring>
#include <set>
#include <utility>
#include <wayland-server-protocol.h>
#include <wayland-server-protocols/ext-image-capture-source-v1.h>
#include <wayland-server-protocols/ext-image-copy-capture-v1.h>
#include <wayland-server-protocols/wlr-screencopy-unstable-v1.h>

namespace framora {

namespace {

using Ending = CopyAnswer::Ending;
using Monitor = ScriptedOutputs::Monitor;

/// The layout of pixels as Qt knows it. Of a format that is only talked of, some layout of four bytes.
QImage::Format layoutOf(std::uint32_t format) {
    switch (format) {
    case WL_SHM_FORMAT_XBGR8888:
    case WL_SHM_FORMAT_ABGR8888:
        return QImage::Format_RGBX8888;
    case WL_SHM_FORMAT_RGB888:
        return QImage::Format_BGR888;
    case WL_SHM_FORMAT_BGR888:
        return QImage::Format_RGB888;
    case WL_SHM_FORMAT_RGB565:
        return QImage::Format_RGB16;
    case WL_SHM_FORMAT_XRGB2101010:
        return QImage::Format_RGB30;
    default:
        return QImage::Format_RGB32;
    }
}

int bytesPerPixel(std::uint32_t format) {
    return QImage::toPixelFormat(layoutOf(format)).bitsPerPixel() / 8;
}

void ignoreRegion(wl_client*, wl_resource*, std::int32_t, std::int32_t, std::int32_t, std::int32_t) {}

} // namespace

ScriptedCopies::ScriptedCopies(ScriptedPieces& pieces) : m_pieces(pieces) {
    std::set<std::uint32_t> formats;
    for (const ScriptedOutput& output : pieces.script.outputs)
        formats.insert(output.copy.formats.begin(), output.copy.formats.end());
    for (const std::uint32_t format : formats)
        if (format > WL_SHM_FORMAT_XRGB8888) // The first two are always there.
            wl_display_add_shm_format(pieces.display, format);
    offerGlobal(pieces.display, zwlr_screencopy_manager_v1_interface, pieces.script.screencopy, &pieces,
                bindScreencopy);
    offerGlobal(pieces.display, ext_output_image_capture_source_manager_v1_interface, pieces.script.imageCopy,
                &pieces, bindSources);
    offerGlobal(pieces.display, ext_image_copy_capture_manager_v1_interface, pieces.script.imageCopy, &pieces,
                bindImageCopy);
}

ScriptedCopies::~ScriptedCopies() = default;

ScriptedCopies::Copy& ScriptedCopies::begin(Monitor& monitor) {
    ++m_asked;
    // The script may be changed by what it runs here.
    if (const auto asked = monitor.told.copy.asked)
        asked();
    auto copy = std::make_unique<Copy>();
    copy->pieces = &m_pieces;
    copy->monitor = &monitor;
    copy->answer = monitor.told.copy;
    m_copies.push_back(std::move(copy));
    return *m_copies.back();
}

void ScriptedCopies::bindScreencopy(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct zwlr_screencopy_frame_v1_interface frameRequests {
        .copy = [](wl_client*, wl_resource* frame,
                   wl_resource* buffer) { copyInto(behind<Copy>(frame), frame, buffer); },
        .destroy = destroyResource,
        .copy_with_damage = [](wl_client*, wl_resource* frame, wl_resource* buffer) {
            copyInto(behind<Copy>(frame), frame, buffer);
        },
    };
    static constexpr struct zwlr_screencopy_manager_v1_interface requests {
        .capture_output =
            [](wl_client* asking, wl_resource* manager, std::uint32_t frameId, std::int32_t,
               wl_resource* output) {
                Copy& copy = behind<ScriptedPieces>(manager).copies->begin(behind<Monitor>(output));
                offer(copy, makeResource(asking, zwlr_screencopy_frame_v1_interface,
                                         wl_resource_get_version(manager), frameId, &frameRequests, &copy));
            },
        .capture_output_region =
            [](wl_client*, wl_resource* manager, std::uint32_t, std::int32_t, wl_resource*, std::int32_t,
               std::int32_t, std::int32_t,
               std::int32_t) { wl_resource_post_error(manager, 0, "whole outputs only"); },
        .destroy = destroyResource,
    };
    makeResource(client, zwlr_screencopy_manager_v1_interface, int(version), id, &requests, data);
}

void ScriptedCopies::offer(const Copy& copy, wl_resource* frame) {
    if (copy.answer.ending == Ending::Never)
        return;
    if (copy.answer.ending == Ending::Failed || copy.monitor->gone) {
        zwlr_screencopy_frame_v1_send_failed(frame);
        return;
    }
    const QSize size = copy.size();
    for (const std::uint32_t format : copy.answer.formats)
        zwlr_screencopy_frame_v1_send_buffer(
            frame, format, std::uint32_t(size.width()), std::uint32_t(size.height()),
            copy.answer.stride.value_or(std::uint32_t(size.width() * bytesPerPixel(format))));
    if (wl_resource_get_version(frame) >= ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
        zwlr_screencopy_frame_v1_send_buffer_done(frame);
}

void ScriptedCopies::copyInto(Copy& copy, wl_resource* frame, wl_resource* buffer) {
    if (copy.monitor->gone) {
        zwlr_screencopy_frame_v1_send_failed(frame);
        return;
    }
    if (!fill(copy, frame, buffer, true))
        return;
    zwlr_screencopy_frame_v1_send_flags(frame,
                                        copy.answer.bottomUp ? ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT : 0);
    zwlr_screencopy_frame_v1_send_ready(frame, 0, 0, 0);
}

bool ScriptedCopies::fill(const Copy& copy, wl_resource* frame, wl_resource* buffer, bool strideToo) {
    wl_shm_buffer* const memory = wl_shm_buffer_get(buffer);
    const QSize size = copy.size();
    const std::uint32_t format = memory ? wl_shm_buffer_get_format(memory) : 0;
    const int tight = size.width() * bytesPerPixel(format);
    if (!memory || QSize(wl_shm_buffer_get_width(memory), wl_shm_buffer_get_height(memory)) != size ||
        std::ranges::find(copy.answer.formats, format) == copy.answer.formats.end() ||
        wl_shm_buffer_get_stride(memory) < tight ||
        (strideToo &&
         wl_shm_buffer_get_stride(memory) != int(copy.answer.stride.value_or(unsigned(tight))))) {
        wl_resource_post_error(frame, 1, "not the buffer that was offered");
        return false;
    }
    QImage picture = copy.monitor->picture.convertToFormat(layoutOf(format));
    if (copy.answer.bottomUp)
        picture = picture.mirrored();
    wl_shm_buffer_begin_access(memory);
    auto* const bytes = static_cast<char*>(wl_shm_buffer_get_data(memory));
    const int stride = wl_shm_buffer_get_stride(memory);
    for (int y = 0; y < std::min(size.height(), picture.height()); ++y) {
        std::memset(bytes + std::ptrdiff_t(y) * stride, 0x5a, std::size_t(stride));
        std::memcpy(bytes + std::ptrdiff_t(y) * stride, picture.constScanLine(y),
                    std::size_t(std::min(tight, picture.width() * bytesPerPixel(format))));
    }
    wl_shm_buffer_end_access(memory);
    return true;
}

void ScriptedCopies::bindSources(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct ext_image_capture_source_v1_interface sourceRequests {
        .destroy = destroyResource
    };
    static constexpr struct ext_output_image_capture_source_manager_v1_interface requests {
        .create_source =
            [](wl_client* asking, wl_resource*, std::uint32_t source, wl_resource* output) {
                makeResource(asking, ext_image_capture_source_v1_interface, 1, source, &sourceRequests,
                             &behind<Monitor>(output));
            },
        .destroy = destroyResource,
    };
    makeResource(client, ext_output_image_capture_source_manager_v1_interface, int(version), id, &requests,
                 data);
}

void ScriptedCopies::tellConstraints(const Copy& copy) {
    if (!copy.session || copy.answer.ending == Ending::Never)
        return;
    if (copy.monitor->gone) {
        ext_image_copy_capture_session_v1_send_stopped(copy.session);
        return;
    }
    const QSize size = copy.size();
    ext_image_copy_capture_session_v1_send_buffer_size(copy.session, std::uint32_t(size.width()),
                                                       std::uint32_t(size.height()));
    for (const std::uint32_t format : copy.answer.formats)
        ext_image_copy_capture_session_v1_send_shm_format(copy.session, format);
    wl_array device;
    wl_array_init(&device);
    ext_image_copy_capture_session_v1_send_dmabuf_device(copy.session, &device);
    ext_image_copy_capture_session_v1_send_dmabuf_format(copy.session, WL_SHM_FORMAT_XBGR8888, &device);
    wl_array_release(&device);
    ext_image_copy_capture_session_v1_send_done(copy.session);
}

void ScriptedCopies::bindImageCopy(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    static constexpr struct ext_image_copy_capture_frame_v1_interface frameRequests {
        .destroy = destroyResource,
        .attach_buffer = [](wl_client*, wl_resource* frame,
                            wl_resource* buffer) { behind<Copy>(frame).buffer = buffer; },
        .damage_buffer = ignoreRegion,
        .capture = [](wl_client*, wl_resource* frame) { capture(behind<Copy>(frame), frame); },
    };
    static constexpr struct ext_image_copy_capture_session_v1_interface sessionRequests {
        .create_frame =
            [](wl_client* asking, wl_resource* session, std::uint32_t frame) {
                makeResource(asking, ext_image_copy_capture_frame_v1_interface, 1, frame, &frameRequests,
                             &behind<Copy>(session));
            },
        .destroy = destroyResource,
    };
    static constexpr struct ext_image_copy_capture_manager_v1_interface requests {
        .create_session =
            [](wl_client* asking, wl_resource* manager, std::uint32_t session, wl_resource* source,
               std::uint32_t) {
                Copy& copy = behind<ScriptedPieces>(manager).copies->begin(behind<Monitor>(source));
                copy.session = makeResource(asking, ext_image_copy_capture_session_v1_interface, 1, session,
                                            &sessionRequests, &copy,
                                            [](wl_resource* gone) { behind<Copy>(gone).session = nullptr; });
                tellConstraints(copy);
            },
        .create_pointer_cursor_session =
            [](wl_client*, wl_resource* manager, std::uint32_t, wl_resource*, wl_resource*) {
                wl_resource_post_error(manager, 0, "no cursors here");
            },
        .destroy = destroyResource,
    };
    makeResource(client, ext_image_copy_capture_manager_v1_interface, int(version), id, &requests, data);
}

void ScriptedCopies::capture(Copy& copy, wl_resource* frame) {
    if (!copy.buffer) {
        wl_resource_post_error(frame, 1, "no buffer");
        return;
    }
    if (copy.monitor->gone) {
        ext_image_copy_capture_frame_v1_send_failed(frame,
                                                    EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_STOPPED);
        return;
    }
    if (std::exchange(copy.answer.newConstraints, false)) {
        // The next session is told the truth at once.
        copy.monitor->told.copy.newConstraints = false;
        copy.monitor->told.copy.size.reset();
        copy.answer.size.reset();
        tellConstraints(copy);
        ext_image_copy_capture_frame_v1_send_failed(
            frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS);
        return;
    }
    if (copy.answer.ending == Ending::Failed) {
        ext_image_copy_capture_frame_v1_send_failed(frame,
                                                    EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_UNKNOWN);
        return;
    }
    if (!fill(copy, frame, copy.buffer, false))
        return;
    const QSize size = copy.size();
    ext_image_copy_capture_frame_v1_send_transform(frame, std::uint32_t(copy.monitor->told.transform));
    ext_image_copy_capture_frame_v1_send_damage(frame, 0, 0, size.width(), size.height());
    ext_image_copy_capture_frame_v1_send_presentation_time(frame, 0, 0, 0);
    ext_image_copy_capture_frame_v1_send_ready(frame);
}

} // namespace framora
