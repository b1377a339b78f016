#pragma once

#include "reference/host/Stopwatch.h"
#include "reference/tools/CommandLine.h"
#include "reference/tools/FrameSequence.h"

class IScene;

namespace Host {

/// The largest time that can be asked for, in milliseconds: more than eleven days.
constexpr double kLongestTime = 1e9;

/// How pictures are asked for on the command line.
struct RenderOptions {
    QString fileName; ///< Of one picture, or with a %04d for the number of each. Empty
                      ///< where no picture is asked for.
    QString renderer; ///< Empty where there is none.
    QStringList hiddenMeshes;
    QStringList hiddenMaterials;
    Take take;                      ///< `animation` is yet to be found in the model.
    std::optional<TVec3<float>> up; ///< In place of the model's.
    bool ground = true;
    int samplesPerPixel = 16;
    int threads = 0;
    Stopwatch* pStopwatch = nullptr; ///< Null where nobody asks where the time goes.

    /// Whether time or frames were asked for, which takes an animation.
    bool plays = false;
};

/// The options that every verb which makes pictures has, apart from --animation.
std::vector<Option> RenderOptionTable();

/// Those of them that say what one picture shows, and how it is drawn.
std::vector<Option> ViewOptionTable();

/// The --animation of verbs that show what nobody may have named.
Option AnimationOption();

/// Checks everything that can be known without the model.
/// \param pDocument is drawn, and says what no option does; null for a model
/// \throws UsageError, Failure
RenderOptions ReadRenderOptions(const Arguments& arguments, const QString& verb, const IScene* pDocument = nullptr);

/// Whether the file name has a place for a number, as in frame%04d.png.
bool IsSeries(const QString& fileName);

/// The name of one picture of a series; of any other file, its name.
QString NumberedFileName(const QString& fileName, int number);

/// Every file that will be written, in order.
QStringList OutputFiles(const RenderOptions& options);

} // namespace Host
