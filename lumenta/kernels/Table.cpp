#include "lumenta/kernels/Kernels.h"

#define LUMENTA_JOINED(a, b) a##b
#define LUMENTA_TABLE(level) LUMENTA_JOINED(level, Table)

namespace Kernels {

const Table LUMENTA_TABLE(LUMENTA_LEVEL) = {
    LUMENTA_LEVEL::Multiply,     LUMENTA_LEVEL::Invert,         LUMENTA_LEVEL::SetLocalTransforms,
    LUMENTA_LEVEL::MoveNodes,    LUMENTA_LEVEL::MeetBox,        LUMENTA_LEVEL::FindHit,
    LUMENTA_LEVEL::PoseVertices, LUMENTA_LEVEL::AddFaceNormals, LUMENTA_LEVEL::NormalizeAll};

} // namespace Kernels
