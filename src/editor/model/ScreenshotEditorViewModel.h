#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/model/StartupTexture.h"
#include "editor/model/StyleHistory.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QUrl>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace framora {

class BackgroundQueue;
class Clock;
class FilePanels;
class MainQueue;
class RandomSource;
class ResourceBundle;
class WorkItem;
struct Composition;

/// The state of one editor window and its commands. Lives on the main thread.
///
/// Lengths are points, `zoom` and the other percents are stored as percents. Every property notifies when it
/// changes; `config` notifies as a whole.
class ScreenshotEditorViewModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(framora::ScreenshotStyleConfig config READ config WRITE setConfig NOTIFY configChanged)
    /// The images' URLs, for views; wallpaperThumbnail() gives their pictures.
    Q_PROPERTY(QList<QUrl> wallpaperURLs READ wallpaperURLs NOTIFY wallpaperImagesChanged)
    /// More wallpapers are being looked for, or one is being imported.
    Q_PROPERTY(bool isLoadingWallpapers READ isLoadingWallpapers NOTIFY isLoadingWallpapersChanged)
    Q_PROPERTY(QSizeF canvasSize READ canvasSize WRITE setCanvasSize NOTIFY canvasSizeChanged)
    Q_PROPERTY(QSizeF offset READ offset WRITE setOffset NOTIFY offsetChanged)
    Q_PROPERTY(QSizeF lastOffset READ lastOffset WRITE setLastOffset NOTIFY lastOffsetChanged)
    Q_PROPERTY(QUrl selectedWallpaperURL READ selectedWallpaperURL NOTIFY selectedWallpaperURLChanged)
    /// Where the selected one stands in `wallpaperURLs`; -1 when it is not there or the style has no image.
    Q_PROPERTY(int selectedWallpaperIndex READ selectedWallpaperIndex NOTIFY selectedWallpaperIndexChanged)
    Q_PROPERTY(QString newTextContent MEMBER m_newTextContent NOTIFY newTextContentChanged)
    Q_PROPERTY(double newTextFontSize MEMBER m_newTextFontSize NOTIFY newTextFontSizeChanged)
    Q_PROPERTY(QColor newTextColor MEMBER m_newTextColor NOTIFY newTextColorChanged)
    Q_PROPERTY(QVariant currentRedactStart MEMBER m_currentRedactStart NOTIFY currentRedactStartChanged)
    Q_PROPERTY(QVariant currentRedactEnd MEMBER m_currentRedactEnd NOTIFY currentRedactEndChanged)
    Q_PROPERTY(QImage originalImage READ originalImage CONSTANT)
    // Fields of `config` in the terms of views: raw values, colours, positions in a catalogue (-1 for none).
    Q_PROPERTY(QString mockupStyle READ mockupStyle NOTIFY configChanged)
    Q_PROPERTY(QString borderStyle READ borderStyle NOTIFY configChanged)
    Q_PROPERTY(QString backgroundType READ backgroundType NOTIFY configChanged)
    Q_PROPERTY(QString gradientStyle READ gradientStyle NOTIFY configChanged)
    Q_PROPERTY(QColor borderColor READ borderColor NOTIFY configChanged)
    Q_PROPERTY(QColor customColor READ customColor NOTIFY configChanged)
    Q_PROPERTY(QColor gradientColor1 READ gradientColor1 NOTIFY configChanged)
    Q_PROPERTY(QColor gradientColor2 READ gradientColor2 NOTIFY configChanged)
    Q_PROPERTY(QColor gradientColor3 READ gradientColor3 NOTIFY configChanged)
    Q_PROPERTY(int magicPresetIndex READ magicPresetIndex NOTIFY configChanged)
    Q_PROPERTY(int gradientPresetIndex READ gradientPresetIndex NOTIFY configChanged)
    Q_PROPERTY(int socialPresetIndex READ socialPresetIndex NOTIFY configChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY historyChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY historyChanged)

public:
    /// A background image on offer: its file and a thumbnail of at most 400 x 300 pixels.
    using Wallpaper = std::pair<QUrl, QImage>;
    /// Shows a plain toast: message, symbol, success.
    using ShowToast = std::function<void(const QString& message, const QString& icon, bool success)>;

    /// What the model asks of the rest of the program; all of it outlives the model.
    struct Services {
        MainQueue& mainQueue;
        BackgroundQueue& backgroundQueue;
        Clock& clock;
        FilePanels& filePanels;
        const ResourceBundle& resources;
        RandomSource& random;
        std::function<QByteArray(const Composition&)> exportPng; ///< composedPng(); empty when it fails.
        ShowToast showToast;                                     ///< May be empty: no toast then.
        /// Hands an import to the wallpaper cache; may be empty.
        std::function<void(const Wallpaper&)> shareWallpaper;
        /// The start-up texture that somebody has loaded already; when empty the model loads it itself.
        /// Called once, by the constructor.
        std::function<std::optional<StartupTexture>()> startupTexture = {};
    };

    /// `image`'s point size is its pixel size divided by its device pixel ratio.
    ScreenshotEditorViewModel(QImage image, Services services, QObject* parent = nullptr);
    ~ScreenshotEditorViewModel() override;

    const ScreenshotStyleConfig& config() const { return m_config; }
    /// A step of its own for undo, unless nothing but the zoom differs.
    void setConfig(const ScreenshotStyleConfig& config);
    /// Writes one field of the style by its name, "gradientConfig.angle" for a nested one. Enumerations take
    /// their raw value, colours a QColor, an absent value clears an optional field. False, and nothing
    /// written, when there is no such field or the value does not convert.
    ///
    /// Numbers and colours that follow each other quickly in one field make one step for undo; a rotation by
    /// quarter turns is a step each.
    Q_INVOKABLE bool set(const QString& field, const QVariant& value);
    /// A control holds `field` from press to release, and all its writes make one step for undo.
    Q_INVOKABLE void beginEdit(const QString& field);
    Q_INVOKABLE void endEdit();
    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    /// Nothing when there is no step. The zoom stays as it is.
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    /// Null when there is no such entry.
    Q_INVOKABLE QImage wallpaperThumbnail(int index) const;
    /// The file's name as it is shown, whatever bytes it is made of. Empty when there is no such entry.
    Q_INVOKABLE QString wallpaperName(int index) const;
    QString mockupStyle() const;
    QString borderStyle() const;
    QString backgroundType() const;
    QString gradientStyle() const;
    QColor borderColor() const;
    QColor customColor() const;
    QColor gradientColor1() const;
    QColor gradientColor2() const;
    QColor gradientColor3() const;
    int magicPresetIndex() const;
    int gradientPresetIndex() const;
    int socialPresetIndex() const;
    bool hasBackgroundImage() const { return m_config.backgroundImageURL.has_value(); }

    const std::vector<Wallpaper>& wallpaperImages() const { return m_wallpaperImages; }
    QList<QUrl> wallpaperURLs() const;
    bool isLoadingWallpapers() const { return m_isLoadingWallpapers || m_importsUnderWay > 0; }
    void setLoadingWallpapers(bool isLoading);
    const QImage& originalImage() const { return m_originalImage; }
    QSizeF imageSize() const; ///< In points.

    QSizeF canvasSize() const { return m_canvasSize; }
    void setCanvasSize(QSizeF size);
    QSizeF offset() const { return m_offset; }
    void setOffset(QSizeF offset);
    QSizeF lastOffset() const { return m_lastOffset; }
    void setLastOffset(QSizeF offset);
    QUrl selectedWallpaperURL() const { return m_selectedWallpaperURL; }
    int selectedWallpaperIndex() const { return m_selectedWallpaperIndex; }
    QString newTextContent() const { return m_newTextContent; }
    double newTextFontSize() const { return m_newTextFontSize; }
    QColor newTextColor() const { return m_newTextColor; }
    QVariant currentRedactStart() const { return m_currentRedactStart; }
    QVariant currentRedactEnd() const { return m_currentRedactEnd; }

    Q_INVOKABLE void zoomIn();
    Q_INVOKABLE void zoomOut();
    Q_INVOKABLE void zoomToActualSize();
    /// Any percentage, held to the limits of zoomIn() and zoomOut().
    Q_INVOKABLE void zoomTo(double percent);
    /// Takes effect 0.1 s later, when the canvas has been measured. From then on it is repeated whenever the
    /// canvas gets another size, until the zoom is changed otherwise.
    Q_INVOKABLE void fitToWindow();
    Q_INVOKABLE void resetDisposition();
    Q_INVOKABLE void randomizeGradient();
    Q_INVOKABLE void chooseBackgroundImage();
    /// Reads the file in the background; when it is a picture, it comes in front of the wallpapers and is
    /// chosen, unless the user has chosen another background meanwhile. Of several imports the later ones
    /// stand further in front, whichever was read first.
    Q_INVOKABLE void importBackgroundImage(const QUrl& url);
    /// The same with the first local file of a drop that is a picture, which also becomes the kind of
    /// background shown. False when there is no local file.
    Q_INVOKABLE bool dropBackgroundImages(const QList<QUrl>& urls);
    Q_INVOKABLE void selectWallpaper(const QUrl& url);
    /// `index` counts in the catalogue; out of range does nothing.
    Q_INVOKABLE void selectMagicPreset(int index);
    Q_INVOKABLE void selectGradientPreset(int index);
    /// -1 clears the choice.
    Q_INVOKABLE void selectSocialPreset(int index);
    /// Also gives the corners the radius that the style stands for: 0, 20 or 40.
    Q_INVOKABLE void selectBorderStyle(const QString& rawValue);
    /// Where the screenshot stands after a drag in the canvas.
    Q_INVOKABLE void setScreenshotOffset(QSizeF offset);
    /// Moves the screenshot by so many points; quick repeats make one step for undo.
    Q_INVOKABLE void nudgeScreenshot(QSizeF distance);
    /// The user's own colour for the colour background; any colour that is not fully clear takes over from
    /// presets.
    Q_INVOKABLE void pickCustomColor(const QColor& color);

    /// The picture at twice its point size; null when there is nothing to draw.
    QImage renderFinalImage() const;
    Q_INVOKABLE void saveImage();
    /// Whether a key that is easily pressed once too often may close the editor: while undo would have
    /// something to take back that was not saved, only the second time within `secondsToLeave`, of which a
    /// toast tells.
    Q_INVOKABLE bool mayLeave();
    static constexpr double secondsToLeave = 3;
    void mergeWallpapers(const std::vector<Wallpaper>& wallpapers);

Q_SIGNALS:
    void configChanged();
    void historyChanged();
    /// The content was fitted and belongs in the middle of the view, even if the zoom is what it was.
    void fitted();
    void wallpaperImagesChanged();
    void isLoadingWallpapersChanged();
    void canvasSizeChanged();
    void offsetChanged();
    void lastOffsetChanged();
    void selectedWallpaperURLChanged();
    void selectedWallpaperIndexChanged();
    void newTextContentChanged();
    void newTextFontSizeChanged();
    void newTextColorChanged();
    void currentRedactStartChanged();
    void currentRedactEndChanged();

private:
    void useStartupTexture();
    void useBackgroundImage(ScreenshotStyleConfig& config, const QUrl& url);
    /// The state as undo knows it.
    StyleHistory::State state() const;
    /// Every change of the style goes through here. `field` as in StyleHistory::record().
    void apply(const StyleHistory::State& next, const QString& field = {});
    void apply(const ScreenshotStyleConfig& config, const QString& field = {});
    void restore(std::optional<StyleHistory::State> state);
    void storeConfig(const ScreenshotStyleConfig& config);
    void storeZoom(double percent);
    /// One import: when it was asked for among the choices of a background, and what else it does.
    struct Import {
        quint64 choice = 0;
        bool showImages = false;
    };
    /// The first of `urls` that is a picture.
    void startImport(const QList<QUrl>& urls, bool showImages);
    /// No wallpaper: none of the files was a picture.
    void finishImport(const Import& import, const std::optional<Wallpaper>& wallpaper);
    void setLoading(bool wallpapers, int imports);
    void chooseWallpaper(const QUrl& url, bool showImages);
    /// The user has chosen what the background shows: an import that was asked for before comes too late.
    void noteChoice() { m_shownChoice = ++m_lastChoice; }
    void updateSelectedWallpaperIndex();
    void setSelectedWallpaperURL(const QUrl& url);
    void setWallpaperImages(std::vector<Wallpaper> wallpapers);
    void fitNow();

    Services m_services;
    QImage m_originalImage;
    ScreenshotStyleConfig m_config;
    std::vector<Wallpaper> m_wallpaperImages;
    bool m_isLoadingWallpapers = false;
    int m_importsUnderWay = 0;
    std::stop_source m_imports;             ///< Nobody waits for them once this is gone.
    quint64 m_lastChoice = 0;               ///< Of a background, made or asked for.
    quint64 m_shownChoice = 0;              ///< The last one that was carried out.
    std::vector<quint64> m_importedChoices; ///< The imports' at the front of the list.
    QSizeF m_canvasSize{0, 0};
    QSizeF m_offset{0, 0};
    QSizeF m_lastOffset{0, 0};
    QUrl m_selectedWallpaperURL;
    int m_selectedWallpaperIndex = -1;
    QString m_newTextContent;
    double m_newTextFontSize = 24.0;
    QColor m_newTextColor = Qt::white;
    QVariant m_currentRedactStart;
    QVariant m_currentRedactEnd;
    StyleHistory m_history;
    std::optional<StyleHistory::State> m_savedState;
    double m_lastAttemptToLeave = -secondsToLeave; ///< By the clock.
    bool m_followsFit = false;                     ///< The zoom in force is the one that fits.
    std::unique_ptr<WorkItem> m_pendingFit;
    std::unique_ptr<WorkItem> m_pendingRefit; ///< After a resize, unless the zoom changes before.
};

} // namespace framora
