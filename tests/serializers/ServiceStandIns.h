#pragma once

#include "benchmarks/StandIn.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"

/// The least that image helpers and file sources need of a host. Each notes what
/// it is asked for; whoever asks for more ends the program.
namespace StandIn {

struct UserInterface : IUserInterface {
    QStringList asked;
    QString answer; ///< What the user chooses; "!" for a dialog that throws.

    struct Dialog final : IFileDialog {
        UserInterface& ui;

        explicit Dialog(UserInterface& owner) : ui(owner) {}
        ~Dialog() override { ui.asked << QStringLiteral("[deleted]"); }
        void AddFilter(const QString& text, const QStringList& suffixes) override { ui.asked << text << suffixes; }
        QString Show(const QString& title, const QString& text, const QString& folder) override
        {
            ui.asked << '[' + title + '|' + text + '|' + folder + ']';
            return ui.answer == "!" ? throw ui.answer : ui.answer;
        }
    };

    IFileDialog* CreateFileDialog(int kind, QObject* parent) override
    {
        asked << QString(parent ? "[dialog %1 in front]" : "[dialog %1]").arg(kind);
        return new Dialog(*this);
    }
    // clang-format off: nothing to be read here
    bool AskChoice(const QString&, const QStringList&, int&) override { No(); } void EndProgress() override { No(); }
    bool AskText(const QString&, const QString&, QString&) override { No(); } bool SetProgress(int) override { No(); }
    void ShowMessage(const QString&) override { No(); } void ShowWarning(const QString&) override { No(); }
    void ShowError(const QString&) override { No(); } void ShowStatus(const QString&) override { No(); }
    void BeginProgress(const QString&) override { No(); } bool AskYesNo(const QString&) override { No(); }
    QObject* GetMainWindow() const override { No(); } bool OpenUrl(const QUrl&) override { No(); }
    bool AskColor(ColorF&) override { No(); }
    // clang-format on
};

/// Its image and its saver are only to be handed on.
struct ImageManager final : IImageManager {
    std::vector<ImageSaverInfo> savers;
    std::vector<ImageLoaderInfo> loaders;
    QStringList recent{"/late.png", "/early.jpg"};
    mutable QStringList asked;
    IImage* image = reinterpret_cast<IImage*>(&asked);
    IImageSaver* saver = reinterpret_cast<IImageSaver*>(&asked);

    std::vector<ImageSaverInfo> GetSaverFormats() const override { return savers; }
    std::vector<ImageLoaderInfo> GetLoaderFormats() const override { return loaders; }
    IImageSaver* CreateSaver(const ImageSaverInfo& of) const override { return asked << of.id + of.extension, saver; }
    IImage* LoadImageFile(const QString& fileName) override { return asked << fileName, image; }
    QStringList GetRecentFiles() const override { return recent; }
    // clang-format off
    IImage* DecodeImage(const QByteArray&, const QString&) override { No(); }
    IImage* CreateImage(const QSize&) override { No(); } IImage* FindImage(const QString&) const override { No(); }
    void ReleaseImage(IImage*) override {} bool ReloadImage(IImage*) override { No(); }
    // clang-format on
};

} // namespace StandIn
