#include "platform/desktop/QtFilePanels.h"

#include "platform/Localized.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

namespace framora {
namespace {

/// A file dialog as a user answers it.
class FileDialogTest : public testing::Test {
protected:
    static QFileDialog& dialog() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<QFileDialog*>(widget); found && found->isVisible())
                return *found;
        throw std::runtime_error("no file dialog is open");
    }
    static bool dialogIsOpen() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (qobject_cast<QFileDialog*>(widget) && widget->isVisible())
                return true;
        return false;
    }
    static void typeName(const QString& name) {
        dialog().findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
    }
    static void press(QDialogButtonBox::StandardButton button) {
        dialog().findChild<QDialogButtonBox*>()->button(button)->click();
    }
    void touch(const QString& name) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QTemporaryDir folder;
};

class SavePngTest : public FileDialogTest {
protected:
    /// Of a user to whom permissions matter, who need not be the one that runs the tests.
    class OrdinaryRights {
    public:
        OrdinaryRights() {
            if (m_user == 0) {
                EXPECT_EQ(setresuid(65534, 65534, 0), 0);
            }
        }
        ~OrdinaryRights() {
            if (m_user == 0) {
                EXPECT_EQ(setresuid(0, 0, 0), 0);
            }
        }

    private:
        uid_t m_user = geteuid();
    };

    /// What the dialog says to the name, which it does not take; dismissed at once.
    static std::string refusal(const QString& name) {
        std::string said;
        QTimer::singleShot(0, [&] {
            if (!question())
                return;
            said = question()->text().toStdString();
            EXPECT_EQ(question()->standardButtons(), QMessageBox::Ok);
            question()->reject();
        });
        typeName(name);
        pressSave();
        EXPECT_TRUE(dialogIsOpen());
        return said;
    }
    static std::string text(const QString& key, const QString& path) {
        return localized(key).arg(path).toStdString();
    }

    static QMessageBox* question() { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); }
    static void pressSave() { press(QDialogButtonBox::Save); }

    /// Runs the dialog in the folder; `user` does what the user does while it is open.
    QString answer(const std::function<void()>& user) {
        QTimer::singleShot(0, [&] {
            dialog().setDirectory(folder.path());
            user();
            if (dialogIsOpen())
                dialog().reject();
        });
        const auto url = QtFilePanels().savePng(QStringLiteral("screenshot_1.png"));
        return url ? QDir(folder.path()).relativeFilePath(url->toLocalFile()) : QString();
    }
};

TEST_F(SavePngTest, theSuffixIsAddedUnlessItIsThere) {
    const std::pair<const char*, const char*> names[] = {{"a", "a.png"},         {"a.b", "a.b.png"},
                                                         {"a.jpg", "a.jpg.png"}, {"a.png", "a.png"},
                                                         {"A.PNG", "A.PNG"},     {"v1.2.Png", "v1.2.Png"}};
    for (const auto& [typed, saved] : names) {
        const QString got = answer([&, name = typed] {
            typeName(QString::fromLatin1(name));
            pressSave();
        });
        EXPECT_EQ(got.toStdString(), saved) << typed;
    }
}

TEST_F(SavePngTest, theFileUnderTheWholeNameIsAskedAbout) {
    touch(QStringLiteral("a.b.png"));
    bool asked = false;
    const auto save = [&](QMessageBox::StandardButton reply) {
        return answer([&, reply] {
            typeName(QStringLiteral("a.b"));
            QTimer::singleShot(0, [&, reply] {
                asked = question() != nullptr;
                if (asked)
                    question()->button(reply)->click();
            });
            pressSave();
        });
    };
    EXPECT_EQ(save(QMessageBox::No), QString());
    EXPECT_TRUE(asked);
    EXPECT_EQ(save(QMessageBox::Yes), QStringLiteral("a.b.png"));
    EXPECT_TRUE(asked);
}

TEST_F(SavePngTest, aFileUnderTheTypedNameIsNotAskedAbout) {
    touch(QStringLiteral("a.b"));
    EXPECT_EQ(answer([&] {
                  typeName(QStringLiteral("a.b"));
                  pressSave();
              }),
              QStringLiteral("a.b.png"));
}

TEST_F(SavePngTest, aFolderThatIsNotThereIsRefusedAndTheDialogWaitsForAnother) {
    touch(QStringLiteral("file"));
    EXPECT_EQ(answer([&] {
                  const QString absent = folder.filePath(QStringLiteral("no/such"));
                  EXPECT_EQ(refusal(absent + QStringLiteral("/a")),
                            text(QStringLiteral("save.no.folder"), absent));
                  EXPECT_EQ(refusal(QStringLiteral("no/such/a.png")),
                            text(QStringLiteral("save.no.folder"), absent));
                  EXPECT_EQ(refusal(QStringLiteral("file/a.png")),
                            text(QStringLiteral("save.no.folder"), folder.filePath(QStringLiteral("file"))));
                  typeName(QStringLiteral("a"));
                  pressSave();
              }),
              QStringLiteral("a.png"));
}

TEST_F(SavePngTest, aFolderThatMayNotBeWrittenIsRefusedAndNotAskedAboutItsFiles) {
    touch(QStringLiteral("a.png"));
    answer([&] {
        QFile::setPermissions(folder.path(), QFile::Permissions(0x5555));
        const OrdinaryRights rights;
        for (const char* name : {"a", "a.png", "b.png"})
            EXPECT_EQ(refusal(QString::fromLatin1(name)),
                      text(QStringLiteral("save.read.only"), folder.path()))
                << name;
    });
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
}

TEST_F(SavePngTest, aFileThatMayNotBeReplacedIsRefusedAndALinkStandsForItsTarget) {
    touch(QStringLiteral("a.png"));
    QDir(folder.path()).mkdir(QStringLiteral("closed"));
    const QString closed = folder.filePath(QStringLiteral("closed"));
    touch(QStringLiteral("closed/kept.png"));
    touch(QStringLiteral("target.png"));
    QFile::link(folder.filePath(QStringLiteral("target.png")), closed + QStringLiteral("/out.png"));
    QFile::link(closed + QStringLiteral("/kept.png"), folder.filePath(QStringLiteral("in.png")));
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
    QFile::setPermissions(folder.filePath(QStringLiteral("target.png")), QFile::Permissions(0x6666));
    QFile::setPermissions(folder.filePath(QStringLiteral("a.png")), QFile::Permissions(0x4444));
    QFile::setPermissions(closed, QFile::Permissions(0x5555));
    // A dialog each: what one refused may be selected in it.
    answer([&] {
        const OrdinaryRights rights;
        EXPECT_EQ(refusal(QStringLiteral("a")),
                  text(QStringLiteral("save.protected"), folder.filePath(QStringLiteral("a.png"))));
    });
    answer([&] {
        const OrdinaryRights rights;
        EXPECT_EQ(refusal(QStringLiteral("in.png")), text(QStringLiteral("save.read.only"), closed));
    });
    EXPECT_EQ(answer([&] {
                  const OrdinaryRights rights;
                  typeName(QStringLiteral("closed/out.png"));
                  QTimer::singleShot(0, [] { question()->button(QMessageBox::Yes)->click(); });
                  pressSave();
              }),
              QStringLiteral("closed/out.png"));
    QFile::setPermissions(closed, QFile::Permissions(0x7777));
}

TEST_F(SavePngTest, onlyPlacesWithAPathAreOffered) {
    answer([&] { EXPECT_EQ(dialog().supportedSchemes(), QStringList{QStringLiteral("file")}); });
}

TEST_F(SavePngTest, aSecondDialogIsNotPutOnTheFirst) {
    answer([&] {
        QTimer patience;
        patience.setSingleShot(true);
        patience.callOnTimeout([] { dialog().reject(); });
        patience.start(1000);
        EXPECT_FALSE(QtFilePanels().savePng(QStringLiteral("screenshot_2.png")));
        EXPECT_FALSE(QtFilePanels().openPicture(QStringLiteral("Open"), {QStringLiteral("image/png")}));
        EXPECT_TRUE(patience.isActive()) << "it had to be answered";
        EXPECT_TRUE(dialogIsOpen());
    });
}

TEST_F(SavePngTest, theNameOfAFolderOpensIt) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("c.d")));
    EXPECT_EQ(answer([&] {
                  typeName(QStringLiteral("c.d"));
                  pressSave();
                  EXPECT_TRUE(dialogIsOpen());
                  typeName(QStringLiteral("e"));
                  pressSave();
              }),
              QStringLiteral("c.d/e.png"));
}

class OpenPictureTest : public FileDialogTest {
protected:
    /// What the dialog lists of the folder once it has read it.
    std::string listed() {
        auto* model = dialog().findChild<QFileSystemModel*>();
        const QSignalSpy read(model, &QFileSystemModel::directoryLoaded);
        dialog().setDirectory(folder.path());
        const QModelIndex root = model->index(folder.path());
        if (!QTest::qWaitFor([&] { return read.contains(QVariantList{folder.path()}); }))
            return {};
        QStringList names;
        for (int row = 0; row < model->rowCount(root); ++row)
            names << model->index(row, 0, root).data().toString();
        names.sort();
        return names.join(u' ').toStdString();
    }

    /// Runs the dialog; `user` does what the user does while it is open.
    static std::optional<QUrl> answer(const std::function<void()>& user) {
        QTimer::singleShot(0, [&] {
            user();
            if (dialogIsOpen())
                dialog().reject();
        });
        return QtFilePanels().openPicture(
            QStringLiteral("Choose"),
            {u"image/png"_qs, u"image/jpeg"_qs, u"image/heic"_qs, u"image/webp"_qs, u"image/tiff"_qs});
    }
};

TEST_F(OpenPictureTest, listsThePicturesOfEveryTypeAtOnceAndNothingElse) {
    for (const char* name : {"a.png", "b.jpg", "c.JPEG", "d.heic", "e.heif", "f.webp", "g.tif", "h.txt", "i"})
        touch(QString::fromLatin1(name));
    answer([&] {
        EXPECT_EQ(listed(), "a.png b.jpg c.JPEG d.heic e.heif f.webp g.tif");
        const auto* types = dialog().findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        EXPECT_EQ(types->count(), 1);
        EXPECT_EQ(types->currentText(), localized(QStringLiteral("open.images")));
        EXPECT_EQ(dialog().fileMode(), QFileDialog::ExistingFile);
    });
}

TEST_F(OpenPictureTest, oneFileIsAnAnswerAndAFolderIsNone) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("d.png")));
    touch(QStringLiteral("a.png"));
    const auto url = answer([&] {
        dialog().setDirectory(folder.path());
        typeName(QStringLiteral("d.png"));
        press(QDialogButtonBox::Open);
        EXPECT_TRUE(dialogIsOpen());
        EXPECT_EQ(dialog().directory().path(), folder.filePath(QStringLiteral("d.png")));
        dialog().setDirectory(folder.path());
        typeName(QStringLiteral("a.png"));
        press(QDialogButtonBox::Open);
    });
    EXPECT_EQ(url, QUrl::fromLocalFile(folder.filePath(QStringLiteral("a.png"))));
    EXPECT_EQ(answer([] {}), std::nullopt);
}

/// The words on the dialog's buttons, and what a question's say.
TEST_F(SavePngTest, DISABLED_saysItsButtons) {
    touch(QStringLiteral("a.b.png"));
    answer([&] {
        for (const auto* button : dialog().findChild<QDialogButtonBox*>()->buttons())
            std::printf("[%s]\n", qPrintable(button->text().remove(u'&')));
        typeName(QStringLiteral("a.b"));
        QTimer::singleShot(0, [&] {
            std::printf("[%s]\n", qPrintable(question()->button(QMessageBox::Yes)->text().remove(u'&')));
            question()->reject();
        });
        pressSave();
    });
}

TEST(QtFilePanelsLanguage, isTheProgramsDownToItsButtons) {
    // A process speaks one language from its start to its end.
    const auto spoken = [](const char* locale) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(locale));
        environment.remove(QStringLiteral("LANGUAGE"));
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--gtest_also_run_disabled_tests"),
                       QStringLiteral("--gtest_filter=*DISABLED_saysItsButtons")});
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput();
    };
    for (const auto& [locale, words] :
         {std::pair("C.UTF-8", QStringList{"Save", "Cancel", "Yes"}),
          std::pair("de_DE.UTF-8", QStringList{"Speichern", "Abbrechen", "Ja"}),
          std::pair("es_ES.UTF-8", QStringList{"Guardar", "Cancelar", "Sí"}),
          std::pair("fr_FR.UTF-8", QStringList{"Enregistrer", "Annuler", "Oui"}),
          std::pair("ja_JP.UTF-8", QStringList{"保存", "キャンセル", "はい"}),
          std::pair("pt_PT.UTF-8", QStringList{"Salvar", "Cancelar", "Sim"}),
          std::pair("zh_CN.UTF-8", QStringList{"保存", "取消", "是"})}) {
        const QByteArray said = spoken(locale);
        for (const QString& word : words)
            EXPECT_TRUE(said.contains('[' + word.toUtf8() + ']') || said.contains('[' + word.toUtf8() + '('))
                << locale << " lacks " << word.toStdString() << " in\n"
                << said.toStdString();
    }
}

} // namespace
} // namespace framora
