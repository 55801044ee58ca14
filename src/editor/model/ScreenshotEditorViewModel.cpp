#include "editor/model/ScreenshotEditorViewModel.h"

#include "editor/model/ColorConversion.h"
#include "editor/model/RandomSource.h"
#include "editor/model/StyleFieldWriter.h"
#include "editor/render/BackgroundDecoder.h"
#include "editor/render/ImageResampler.h"
#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"
#include "platform/Clock.h"
#include "platform/FilePanels.h"
#include "platform/MainQueue.h"

#include <QPointer>
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace framora {
namespace {

constexpr double minimumZoom = 10.0;
constexpr double maximumZoom = 300.0;
constexpr double zoomFactor = 1.2;
constexpr double sidebarWidth = 344.0;

/// All in 0...1; the hue runs once round the circle.
Color hsb(double hue, double saturation, double brightness) {
    const auto component = [&](double shift) {
        const double sector = std::fmod(shift + hue * 6.0, 6.0);
        return brightness * (1.0 - saturation * std::clamp(std::min(sector, 4.0 - sector), 0.0, 1.0));
    };
    return {component(5.0), component(3.0), component(1.0), 1.0};
}

QImage makeThumbnail(const QImage& image) {
    return resizedImage(image, 400, 300);
}

template <class Preset> int indexOf(const std::optional<Preset>& selected, const QList<Preset>& catalogue) {
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), [&](const Preset& preset) {
        return selected && preset.id == selected->id;
    });
    return found == catalogue.end() ? -1 : int(found - catalogue.begin());
}

} // namespace

ScreenshotEditorViewModel::ScreenshotEditorViewModel(QImage image, Services services, QObject* parent)
    : QObject(parent), m_services(std::move(services)), m_originalImage(std::move(image)),
      m_config(ScreenshotStyleConfig::shared()) {
    useStartupTexture();
}

ScreenshotEditorViewModel::~ScreenshotEditorViewModel() = default;

void ScreenshotEditorViewModel::useStartupTexture() {
    const auto given = std::exchange(m_services.startupTexture, {});
    const auto texture = given ? given() : StartupTexture::load(m_services.resources);
    if (!texture)
        return;
    m_config.backgroundType = BackgroundType::image;
    useBackgroundImage(m_config, texture->url);
    m_selectedWallpaperURL = texture->url;
    m_wallpaperImages = {{texture->url, texture->thumbnail}};
}

void ScreenshotEditorViewModel::setConfig(const ScreenshotStyleConfig& config) {
    if (m_config == config)
        return;
    m_config = config;
    Q_EMIT configChanged();
}

bool ScreenshotEditorViewModel::set(const QString& field, const QVariant& value) {
    ScreenshotStyleConfig config = m_config;
    if (!writeStyleField(config, field, value))
        return false;
    setConfig(config);
    return true;
}

QString ScreenshotEditorViewModel::mockupStyle() const {
    return rawValue(m_config.mockupStyle);
}
QString ScreenshotEditorViewModel::borderStyle() const {
    return rawValue(m_config.borderStyle);
}
QString ScreenshotEditorViewModel::backgroundType() const {
    return rawValue(m_config.backgroundType);
}
QString ScreenshotEditorViewModel::gradientStyle() const {
    return rawValue(m_config.gradientConfig.style);
}
QColor ScreenshotEditorViewModel::borderColor() const {
    return toQColor(m_config.borderColor);
}
QColor ScreenshotEditorViewModel::customColor() const {
    return toQColor(m_config.customColor);
}
QColor ScreenshotEditorViewModel::gradientColor1() const {
    return toQColor(m_config.gradientConfig.color1);
}
QColor ScreenshotEditorViewModel::gradientColor2() const {
    return toQColor(m_config.gradientConfig.color2);
}
QColor ScreenshotEditorViewModel::gradientColor3() const {
    return toQColor(m_config.gradientConfig.color3);
}

int ScreenshotEditorViewModel::magicPresetIndex() const {
    return indexOf(m_config.selectedMagicPreset, PresetCatalogues::magicPresets());
}

int ScreenshotEditorViewModel::gradientPresetIndex() const {
    // A gradient that was edited since still comes from its preset, but does not look like it any more.
    const auto& selected = m_config.selectedGradientPreset;
    const auto looks = [](const SimpleGradientConfig& gradient) {
        return std::tuple(gradient.style, gradient.color1, gradient.color2, gradient.useThreeColors,
                          gradient.angle);
    };
    if (!selected || looks(selected->config) != looks(m_config.gradientConfig))
        return -1;
    return indexOf(selected, PresetCatalogues::simpleGradientPresets());
}

int ScreenshotEditorViewModel::socialPresetIndex() const {
    return indexOf(m_config.selectedSocialPreset, PresetCatalogues::socialMediaPresets());
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
}

void ScreenshotEditorViewModel::setCanvasSize(QSizeF size) {
    if (m_canvasSize == size)
        return;
    m_canvasSize = size;
    Q_EMIT canvasSizeChanged();
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
}

void ScreenshotEditorViewModel::setZoom(double zoom) {
    ScreenshotStyleConfig config = m_config;
    config.zoom = zoom;
    setConfig(config);
}

void ScreenshotEditorViewModel::zoomIn() {
    setZoom(std::min(m_config.zoom * zoomFactor, maximumZoom));
}
void ScreenshotEditorViewModel::zoomOut() {
    setZoom(std::max(m_config.zoom / zoomFactor, minimumZoom));
}
void ScreenshotEditorViewModel::zoomToActualSize() {
    setZoom(100.0);
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
    setZoom(factor * 100.0);
    setOffset({0, 0});
    setLastOffset({0, 0});
}

void ScreenshotEditorViewModel::resetDisposition() {
    setOffset({0, 0});
    setLastOffset({0, 0});
    ScreenshotStyleConfig config = m_config;
    config.rotation = 0;
    setConfig(config);
}

void ScreenshotEditorViewModel::randomizeGradient() {
    // Each draw on a line of its own: the order is part of the behaviour.
    RandomSource& random = m_services.random;
    const auto fraction = [](double x) { return x - std::floor(x); };
    ScreenshotStyleConfig config = m_config;
    SimpleGradientConfig& gradient = config.gradientConfig;

    const double hue1 = random.real(0.0, 1.0);
    const double saturation1 = random.real(0.6, 1.0);
    const double brightness1 = random.real(0.7, 0.95);
    gradient.color1 = hsb(hue1, saturation1, brightness1);

    const double hue2 = fraction(hue1 + random.real(0.08, 0.2));
    const double saturation2 = random.real(0.5, 0.9);
    const double brightness2 = random.real(0.6, 0.9);
    gradient.color2 = hsb(hue2, saturation2, brightness2);

    const double hue3 = fraction(hue1 + random.real(0.25, 0.5));
    const double saturation3 = random.real(0.5, 0.95);
    const double brightness3 = random.real(0.65, 0.95);
    gradient.color3 = hsb(hue3, saturation3, brightness3);

    gradient.angle = 45.0 * random.integer(0, 7);
    config.selectedGradientPreset.reset();
    setConfig(config);
}

void ScreenshotEditorViewModel::useBackgroundImage(ScreenshotStyleConfig& config, const QUrl& url) {
    config.backgroundImageURL = url;
    config.selectedMagicPreset.reset();
    config.selectedGradient.reset();
    config.selectedSolidColor.reset();
}

void ScreenshotEditorViewModel::chooseBackgroundImage() {
    static const QStringList types{QStringLiteral("image/*"), QStringLiteral("image/jpeg"),
                                   QStringLiteral("image/png"), QStringLiteral("image/heic"),
                                   QStringLiteral("image/tiff")};
    const QPointer self(this);
    const auto url = m_services.filePanels.openFile(QStringLiteral("Select an image for background"), types);
    // The panel serves the program's other windows, so the editor may have been closed meanwhile.
    if (!self || !url)
        return;
    const QImage image = BackgroundDecoder::decode(*url);
    if (image.isNull())
        return;
    const Wallpaper wallpaper{*url, makeThumbnail(image)};
    std::vector<Wallpaper> wallpapers = m_wallpaperImages;
    wallpapers.insert(wallpapers.begin(), wallpaper);
    setWallpaperImages(std::move(wallpapers));
    if (m_services.shareWallpaper)
        m_services.shareWallpaper(wallpaper);
    selectWallpaper(*url);
}

void ScreenshotEditorViewModel::selectWallpaper(const QUrl& url) {
    setSelectedWallpaperURL(url);
    ScreenshotStyleConfig config = m_config;
    useBackgroundImage(config, url);
    setConfig(config);
}

void ScreenshotEditorViewModel::selectMagicPreset(int index) {
    const auto& presets = PresetCatalogues::magicPresets();
    if (index < 0 || index >= presets.size())
        return;
    ScreenshotStyleConfig config = m_config;
    config.selectedMagicPreset = presets[index];
    config.selectedGradient.reset();
    config.selectedSolidColor.reset();
    config.backgroundImageURL.reset();
    config.customColor = Color::clear();
    setConfig(config);
}

void ScreenshotEditorViewModel::selectGradientPreset(int index) {
    const auto& presets = PresetCatalogues::simpleGradientPresets();
    if (index < 0 || index >= presets.size())
        return;
    ScreenshotStyleConfig config = m_config;
    config.gradientConfig = presets[index].config;
    config.selectedGradientPreset = presets[index];
    setConfig(config);
}

void ScreenshotEditorViewModel::selectSocialPreset(int index) {
    const auto& presets = PresetCatalogues::socialMediaPresets();
    ScreenshotStyleConfig config = m_config;
    config.selectedSocialPreset.reset();
    if (index >= 0 && index < presets.size())
        config.selectedSocialPreset = presets[index];
    setConfig(config);
}

void ScreenshotEditorViewModel::selectBorderStyle(const QString& raw) {
    const auto style = fromRawValue<BorderStyle>(raw);
    if (!style)
        return;
    ScreenshotStyleConfig config = m_config;
    config.borderStyle = *style;
    config.borderRadius = *style == BorderStyle::sharp ? 0.0 : *style == BorderStyle::curved ? 20.0 : 40.0;
    setConfig(config);
}

void ScreenshotEditorViewModel::setScreenshotOffset(QSizeF offset) {
    ScreenshotStyleConfig config = m_config;
    config.screenshotOffset = {offset.width(), offset.height()};
    setConfig(config);
}

void ScreenshotEditorViewModel::pickCustomColor(const QColor& color) {
    ScreenshotStyleConfig config = m_config;
    config.customColor = fromQColor(color);
    if (color.alpha() != 0) {
        config.selectedMagicPreset.reset();
        config.selectedGradient.reset();
        config.selectedSolidColor.reset();
        config.backgroundImageURL.reset();
    }
    setConfig(config);
}

QImage ScreenshotEditorViewModel::renderFinalImage() const {
    return ScreenshotRenderer(m_originalImage, m_config).render();
}

void ScreenshotEditorViewModel::saveImage() {
    const QImage image = renderFinalImage();
    if (image.isNull())
        return;
    // The panel serves the program's other windows: this model may be gone when it returns, and the user's
    // choice still counts.
    const auto encode = m_services.encodePng;
    const auto showToast = m_services.showToast;
    const auto seconds = static_cast<long long>(std::floor(m_services.clock.secondsSince1970()));
    const auto url = m_services.filePanels.savePng(QStringLiteral("screenshot_%1.png").arg(seconds));
    if (!url)
        return;
    const QByteArray png = encode(image);
    // A failed write leaves what was there; it is not reported.
    if (!png.isEmpty())
        writeFileAtomically(url->toLocalFile(), png);
    // Follows any confirmed panel, whether a file was written or not.
    if (showToast)
        showToast(QStringLiteral("Saved"), QStringLiteral("checkmark.circle.fill"), true);
}

void ScreenshotEditorViewModel::mergeWallpapers(const std::vector<Wallpaper>& wallpapers) {
    std::vector<Wallpaper> merged = m_wallpaperImages;
    // Only what was there before counts as known, as a set.
    std::vector<QUrl> known;
    known.reserve(merged.size());
    for (const auto& entry : merged)
        known.push_back(entry.first);
    for (const auto& entry : wallpapers)
        if (std::find(known.begin(), known.end(), entry.first) == known.end())
            merged.push_back(entry);
    if (merged.size() != m_wallpaperImages.size())
        setWallpaperImages(std::move(merged));
}

} // namespace framora
