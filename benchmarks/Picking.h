#pragma once

#include "benchmarks/Rows.h"
#include "benchmarks/SceneStandIns.h"

#include <QPoint>

#include <memory>

namespace Bench {

/// A scene, and pixels of a view into it.
struct View {
    static constexpr TVec2<float> kSize{800.0f, 600.0f};

    StandIn::Scene scene;
    std::vector<std::unique_ptr<StandIn::Mesh>> meshes;
    std::vector<std::unique_ptr<StandIn::Node>> nodes;
    std::vector<QPoint> pixels;
};

/// Picking through every pixel of a view of View::kSize; its elements are the pixels.
Contest Picking(const std::shared_ptr<IScene>& scene, const std::vector<QPoint>& pixels);

} // namespace Bench
