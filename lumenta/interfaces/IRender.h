#pragma once

#include "lumenta/Export.h"
#include "lumenta/interfaces/SignalArguments.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

class IScene;

/// What a picture is asked for, beside what the scene says.
struct sRenderSettings {
    QSize size;                ///< In pixels. Empty for the scene's render size.
    int nSamplesPerPixel = 16; ///< Of renderers that sample; at least 1.
    int nThreads = 0;          ///< 0 for one per core. Never changes a bit of the picture.
};

/// Makes a picture of a scene from its camera.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host, for one picture
/// after another, never for two at a time.
/// **Thread:** the one that the renderer and the scene live in. All signals are
/// emitted there, whatever threads the renderer uses inside.
/// **Order:** Start(); then any number of `progress` and `log`; then `done`
/// exactly once, possibly before Start() returns; GetImage() at any time after
/// `done`. The scene must not change between Start() and `done`.
/// **Ownership:** the renderer belongs to whoever had the plug-in make it.
///
/// Shown are the visible mesh nodes, lit by sun, sky and visible lights, the
/// ground and the background that the scene asks for. The frame of the camera
/// is fitted into the picture. What a renderer can't show of a material it says
/// once in `log`, and goes on without.
class LUMENTA_EXPORT IRender : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IRender() override;

    /// Begins a picture; may return before it is complete.
    /// \throws LogicException the last picture is not done
    virtual void Start(const IScene& scene, const sRenderSettings& settings) = 0;

    /// Asks for an early end. May be called from a slot of `progress`. Without a
    /// picture in the making nothing happens.
    virtual void Stop() = 0;

    /// The last picture, opaque, in the size asked for. Null before the first,
    /// between Start() and `done`, and after a failure.
    virtual QImage GetImage() const = 0;

Q_SIGNALS:
    /// A line for a person.
    void log(const QString& strText);
    /// The picture has come to its end, good or bad.
    void done(eRenderExitCode code);
    /// 0 to 100, never falling within one picture.
    void progress(int n);
};
