#pragma once

#include <QElapsedTimer>

#include <array>
#include <cstddef>

namespace Host {

/// What time is spent on from a model's file to pictures of it.
enum eStage {
    eStagePlugins,  ///< Finding them, and loading the renderer.
    eStageReading,  ///< The model or document, and its textures.
    eStagePose,     ///< Where each bone is at a moment.
    eStageMeshes,   ///< Vertices and normals that follow the bones; and handing them over.
    eStageDocument, ///< Nodes and materials, and keeping meshes.
    eStageFraming,  ///< Where the camera stands, so that nothing is cut off.
    eStagePreparing, ///< What a renderer copies, builds and asks before the first pixel.
    eStageDrawing,
    eStageWriting, ///< The files of pictures, and putting contact sheets together.
    eStageRest,    ///< Everything else.
    eStageCount
};

/// Tells where the time goes. It runs from the beginning, always for one stage;
/// a stage within another one interrupts it, so that the times of all add up.
///
/// The owner's thread.
class Stopwatch {
public:
    Stopwatch() { m_timer.start(); }

    /// Nanoseconds so far, by stage.
    std::array<qint64, eStageCount> GetTimes();

    /// From now on, until another is begun.
    /// \return the one before
    eStage Begin(eStage stage);

private:
    QElapsedTimer m_timer; ///< Since the stage began, or went on.
    eStage m_stage = eStageRest;
    std::array<qint64, eStageCount> m_times{};
};

/// A stage as long as it lives.
class Timed {
public:
    /// \param pStopwatch null where nobody wants to know
    Timed(Stopwatch* pStopwatch, eStage stage)
        : m_pStopwatch(pStopwatch)
        , m_before(pStopwatch ? pStopwatch->Begin(stage) : eStageRest)
    {
    }

    ~Timed()
    {
        if (m_pStopwatch) m_pStopwatch->Begin(m_before);
    }

    Timed(const Timed&) = delete;
    Timed& operator=(const Timed&) = delete;

private:
    Stopwatch* const m_pStopwatch;
    const eStage m_before;
};

} // namespace Host
