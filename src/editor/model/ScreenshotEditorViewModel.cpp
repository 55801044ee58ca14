#include "editor/model/ScreenshotEditorViewModel.h"

#include "editor/model/ColorConversion.h"
#include "editor/model/GradientRandomizer.h"
#include "editor/model/StyleFieldWriter.h"
#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"
#include "platform/Clock.h"
#include "platform/FilePanels.h"
#include "platform/Localized.h"
#include "platform/MainQueue.h"

#include <QPointer>
#include <algorithm>
#include <cmath>
#include <utility>

namespace framora {
namespace {

constexpr double minimumZoom = 10.0;
constexpr double maximumZoom = 300.0;
constexpr double zoomFactor = 1.2;
constexpr double sidebarWidth = 344.0;

/// Whether a control that writes the field does so many times in one go. Quarter turns are presses.
bool comesInBursts(const QString& field, const QVariant& value) {
    return field != u"rotation" && value.typeId() != QMetaType::Bool &&
           (value.canConvert<double>() || value.typeId() == QMetaType::QColor) &&
           value.typeId() != QMetaType::QString;
}

} // namespace

ScreenshotEditorViewModel::ScreenshotEditorViewModel(QImage image, Services services, QObject* parent)
    : QObject(parent), m_services(std::move(services)), m_originalImage(std::move(image)),
      m_config(ScreenshotStyleConfig::shared()) {
    useStartupTexture();
}

ScreenshotEditorViewModel::~ScreenshotEditorViewModel() {
    m_imports.request_stop();
}

void ScreenshotEditorViewModel::useStartupTexture() {
    const auto given = std::exchange(m_services.startupTexture, {});
    const auto texture = given ? given() : StartupTexture::load(m_services.resources);
    if (!texture)
        return;
    m_config.backgroundType = BackgroundType::image;
    useBackgroundImage(m_config, texture->url);
    m_selectedWallpaperURL = texture->url;
    m_wallpaperImages = {{texture->url, texture->thumbnail}};
    updateSelectedWallpaperIndex();
}

StyleHistory::State ScreenshotEditorViewModel::state() const {
    return {m_config, m_selectedWallpaperURL, m_lastOffset};
}

void ScreenshotEditorViewModel::storeConfig(const ScreenshotStyleConfig& config) {
    if (m_config == config)
        return;
    m_followsFit = m_followsFit && config.zoom == m_config.zoom;
    const bool hadImage = hasBackgroundImage();
    m_config = config;
    Q_EMIT configChanged();
    if (hasBackgroundImage() != hadImage)
        updateSelectedWallpaperIndex();
}

void ScreenshotEditorViewModel::apply(const StyleHistory::State& next, const QString& field) {
    m_history.record(state(), next, field, m_services.clock.secondsSince1970());
    m_lastAttemptToLeave = -secondsToLeave; // What was said did not count this edit.
    // Highlight first: whoever is told of the new style finds both.
    setSelectedWallpaperURL(next.selectedWallpaperURL);
    storeConfig(next.config);
    Q_EMIT historyChanged();
}

void ScreenshotEditorViewModel::apply(const ScreenshotStyleConfig& config, const QString& field) {
    if (config != m_config)
        apply({config, m_selectedWallpaperURL, m_lastOffset}, field);
}

void ScreenshotEditorViewModel::setConfig(const ScreenshotStyleConfig& config) {
    apply(config);
}

bool ScreenshotEditorViewModel::set(const QString& field, const QVariant& value) {
    ScreenshotStyleConfig config = m_config;
    if (!writeStyleField(config, field, value))
        return false;
    if (field == u"backgroundType")
        noteChoice();
    apply(config, m_history.isEditing(field) || comesInBursts(field, value) ? field : QString());
    return true;
}

void ScreenshotEditorViewModel::beginEdit(const QString& field) {
    m_history.beginEdit(field);
}

void ScreenshotEditorViewModel::endEdit() {
    m_history.endEdit();
}

void ScreenshotEditorViewModel::undo() {
    restore(m_history.undo(state()));
}

void ScreenshotEditorViewModel::redo() {
    restore(m_history.redo(state()));
}

void ScreenshotEditorViewModel::restore(std::optional<StyleHistory::State> state) {
    if (!state)
        return;
    noteChoice();
    state->config.zoom = m_config.zoom;
    setSelectedWallpaperURL(state->selectedWallpaperURL);
    setOffset(state->lastOffset);
    setLastOffset(state->lastOffset);
    storeConfig(state->config);
    Q_EMIT historyChanged();
}

QSizeF ScreenshotEditorViewModel::imageSize() const {
    return QSizeF(m_originalImage.size()) / m_originalImage.devicePixelRatio();
}

QList<QUrl> ScreenshotEditorViewModel::wallpaperURLs() const {
    QList<QUrl> urls;
    for (const auto& entry : m_wallpaperImages)
        urls.append(entry.first);
    return urls;
}

QImage ScreenshotEditorViewModel::wallpaperThumbnail(int index) const {
    const bool exists = index >= 0 && std::size_t(index) < m_wallpaperImages.size();
    return exists ? m_wallpaperImages[std::size_t(index)].second : QImage();
}

QString ScreenshotEditorViewModel::wallpaperName(int index) const {
    const bool exists = index >= 0 && std::size_t(index) < m_wallpaperImages.size();
    return exists ? m_wallpaperImages[std::size_t(index)].first.fileName(QUrl::FullyDecoded) : QString();
}

void ScreenshotEditorViewModel::setWallpaperImages(std::vector<Wallpaper> wallpapers) {
    m_wallpaperImages = std::move(wallpapers);
    Q_EMIT wallpaperImagesChanged();
    updateSelectedWallpaperIndex();
}

void ScreenshotEditorViewModel::updateSelectedWallpaperIndex() {
    const auto selected =
        std::find_if(m_wallpaperImages.begin(), m_wallpaperImages.end(),
                     [&](const auto& entry) { return entry.first == m_selectedWallpaperURL; });
    const bool isOnOffer = selected != m_wallpaperImages.end() && hasBackgroundImage();
    const int index = isOnOffer ? int(selected - m_wallpaperImages.begin()) : -1;
    if (index == m_selectedWallpaperIndex)
        return;
    m_selectedWallpaperIndex = index;
    Q_EMIT selectedWallpaperIndexChanged();
}

void ScreenshotEditorViewModel::setCanvasSize(QSizeF size) {
    if (m_canvasSize == size)
        return;
    m_canvasSize = size;
    Q_EMIT canvasSizeChanged();
    // A window that is being resized comes here many times; only the last size is fitted to.
    if (m_followsFit)
        m_pendingRefit = m_services.mainQueue.after(0.1, [this] {
            if (m_followsFit)
                fitNow();
        });
}

void ScreenshotEditorViewModel::setOffset(QSizeF offset) {
    if (m_offset == offset)
        return;
    m_offset = offset;
    Q_EMIT offsetChanged();
}

void ScreenshotEditorViewModel::setLastOffset(QSizeF offset) {
    if (m_lastOffset == offset)
        return;
    m_lastOffset = offset;
    Q_EMIT lastOffsetChanged();
}

void ScreenshotEditorViewModel::setSelectedWallpaperURL(const QUrl& url) {
    if (m_selectedWallpaperURL == url)
        return;
    m_selectedWallpaperURL = url;
    Q_EMIT selectedWallpaperURLChanged();
    updateSelectedWallpaperIndex();
}

void ScreenshotEditorViewModel::storeZoom(double percent) {
    m_followsFit = false;
    ScreenshotStyleConfig config = m_config;
    config.zoom = percent;
    storeConfig(config);
}
void ScreenshotEditorViewModel::zoomTo(double percent) {
    storeZoom(std::clamp(percent, minimumZoom, maximumZoom));
}
// A long picture is fitted below the lowest zoom: from there in by steps as from anywhere else.
void ScreenshotEditorViewModel::zoomIn() {
    storeZoom(std::min(m_config.zoom * zoomFactor, maximumZoom));
}
void ScreenshotEditorViewModel::zoomOut() {
    storeZoom(std::max(m_config.zoom / zoomFactor, minimumZoom));
}
void ScreenshotEditorViewModel::zoomToActualSize() {
    storeZoom(100.0);
}

void ScreenshotEditorViewModel::fitToWindow() {
    // The item ends with the model, so a closed editor is never fitted.
    m_pendingFit = m_services.mainQueue.after(0.1, [this] { fitNow(); });
}

void ScreenshotEditorViewModel::fitNow() {
    const double availableWidth = std::max(m_canvasSize.width() - sidebarWidth - 40.0, 200.0);
    const double availableHeight = std::max(m_canvasSize.height() - 60.0, 200.0);
    const double contentWidth = imageSize().width() + 2.0 * m_config.padding;
    const double contentHeight = imageSize().height() + 2.0 * m_config.padding;
    const double factor = std::min({availableWidth / contentWidth, availableHeight / contentHeight, 1.0});
    ScreenshotStyleConfig config = m_config;
    config.zoom = factor * 100.0;
    storeConfig(config);
    setOffset({0, 0});
    setLastOffset({0, 0});
    m_followsFit = true;
    Q_EMIT fitted();
}

void ScreenshotEditorViewModel::resetDisposition() {
    ScreenshotStyleConfig config = m_config;
    config.rotation = 0;
    apply(config);
    setOffset({0, 0});
    setLastOffset({0, 0});
}

void ScreenshotEditorViewModel::randomizeGradient() {
    ScreenshotStyleConfig config = m_config;
    framora::randomizeGradient(config.gradientConfig, m_services.random);
    config.selectedGradientPreset.reset();
    noteChoice();
    apply(config);
}

void ScreenshotEditorViewModel::selectMagicPreset(int index) {
    const auto& presets = PresetCatalogues::magicPresets();
    if (index < 0 || index >= presets.size())
        return;
    ScreenshotStyleConfig config = m_config;
    noteChoice();
    config.selectedMagicPreset = presets[index];
    config.selectedGradient.reset();
    config.selectedSolidColor.reset();
    config.backgroundImageURL.reset();
    config.customColor = Color::clear();
    apply(config);
}

void ScreenshotEditorViewModel::selectGradientPreset(int index) {
    const auto& presets = PresetCatalogues::simpleGradientPresets();
    if (index < 0 || index >= presets.size())
        return;
    ScreenshotStyleConfig config = m_config;
    noteChoice();
    config.gradientConfig = presets[index].config;
    config.selectedGradientPreset = presets[index];
    apply(config);
}

void ScreenshotEditorViewModel::selectSocialPreset(int index) {
    const auto& presets = PresetCatalogues::socialMediaPresets();
    ScreenshotStyleConfig config = m_config;
    config.selectedSocialPreset.reset();
    if (index >= 0 && index < presets.size())
        config.selectedSocialPreset = presets[index];
    apply(config);
}

void ScreenshotEditorViewModel::selectBorderStyle(const QString& raw) {
    const auto style = fromRawValue<BorderStyle>(raw);
    if (!style)
        return;
    ScreenshotStyleConfig config = m_config;
    config.borderStyle = *style;
    config.borderRadius = *style == BorderStyle::sharp ? 0.0 : *style == BorderStyle::curved ? 20.0 : 40.0;
    apply(config);
}

void ScreenshotEditorViewModel::setScreenshotOffset(QSizeF offset) {
    ScreenshotStyleConfig config = m_config;
    config.screenshotOffset = {offset.width(), offset.height()};
    apply(config);
}

void ScreenshotEditorViewModel::nudgeScreenshot(QSizeF distance) {
    ScreenshotStyleConfig config = m_config;
    config.screenshotOffset.width += distance.width();
    config.screenshotOffset.height += distance.height();
    apply(config, QStringLiteral("screenshotOffset"));
    setLastOffset(m_lastOffset + distance);
    setOffset(m_lastOffset);
}

void ScreenshotEditorViewModel::pickCustomColor(const QColor& color) {
    ScreenshotStyleConfig config = m_config;
    config.customColor = fromQColor(color);
    if (color.alpha() != 0) {
        noteChoice();
        config.selectedMagicPreset.reset();
        config.selectedGradient.reset();
        config.selectedSolidColor.reset();
        config.backgroundImageURL.reset();
    }
    apply(config, QStringLiteral("customColor"));
}

QImage ScreenshotEditorViewModel::renderFinalImage() const {
    return ScreenshotRenderer(m_originalImage, m_config).render();
}

void ScreenshotEditorViewModel::saveImage() {
    // The picture as it is now; it is drawn into its file, not held while the user chooses one.
    const std::optional<Composition> composition = exportComposition(m_originalImage, m_config);
    if (!composition)
        return;
    // The panel serves the program's other windows: this model may be gone when it returns, and the user's
    // choice still counts.
    const auto exportPng = m_services.exportPng;
    const auto showToast = m_services.showToast;
    const StyleHistory::State saved = state();
    const QPointer<ScreenshotEditorViewModel> self(this);
    const auto seconds = static_cast<long long>(std::floor(m_services.clock.secondsSince1970()));
    const auto url = m_services.filePanels.savePng(QStringLiteral("screenshot_%1.png").arg(seconds));
    if (!url)
        return;
    const QByteArray png = exportPng(*composition);
    // A failed write leaves what was there; it is not reported.
    if (!png.isEmpty() && writeFileAtomically(url->toLocalFile(), png).isEmpty() && self)
        self->m_savedState = saved;
    // Follows any confirmed panel, whether a file was written or not.
    if (showToast)
        showToast(QStringLiteral("Saved"), QStringLiteral("checkmark.circle.fill"), true);
}

bool ScreenshotEditorViewModel::mayLeave() {
    if (!canUndo() || (m_savedState && StyleHistory::looksEqual(*m_savedState, state())))
        return true;
    const double now = m_services.clock.secondsSince1970();
    const double last = std::exchange(m_lastAttemptToLeave, now);
    if (now >= last && now - last <= secondsToLeave)
        return true;
    if (m_services.showToast)
        m_services.showToast(localized(QStringLiteral("leave.again")),
                             QStringLiteral("exclamationmark.triangle.fill"), false);
    return false;
}

void ScreenshotEditorViewModel::mergeWallpapers(const std::vector<Wallpaper>& wallpapers) {
    std::vector<Wallpaper> merged = m_wallpaperImages;
    // Only what was there before counts as known.
    for (const Wallpaper& entry : wallpapers)
        if (std::none_of(m_wallpaperImages.begin(), m_wallpaperImages.end(),
                         [&](const Wallpaper& known) { return known.first == entry.first; }))
            merged.push_back(entry);
    if (merged.size() != m_wallpaperImages.size())
        setWallpaperImages(std::move(merged));
}

} // namespace framora
