#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/scene/Picking.h"
#include "matrix/World.h"

// What goes through sines, cosines and tangents of the C library.

namespace Trials {

namespace {

constexpr int kRounds = 50000;

void Rotations(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        Matrix matrix;
        matrix.SetRotation(AnyAngles(random));
        sum.Add(matrix);
    }
}

void Directions(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i)
        sum.Add(DirectionFromAngles(AnyAngles(random)));
}

void Cameras(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const Vec3 angles = AnyAngles(random);
        StandIn::Camera camera;
        camera.state = {AnyVector(random), AnyFloat(random), angles.x, angles.y};
        Matrix matrix;
        CalculateCameraMatrix(matrix, camera.state.target, camera.state.distance, angles.x, angles.y);
        sum.Add(matrix);
        sum.Add(GetCameraPosition(camera));
        sum.Add(GetCameraDirection(camera));
    }
}

void Projections(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        const float fov = random.Below(8) == 0 ? AnyFloat(random) : random.Between(1.0f, 170.0f);
        const float frame = random.Below(8) == 0 ? AnyFloat(random) : random.Between(0.2f, 5.0f);
        const float aspect = random.Below(8) == 0 ? AnyFloat(random) : random.Between(0.2f, 5.0f);
        const float zNear = AnyFloat(random);
        Matrix matrix;
        CalculateProjectionMatrix(matrix, fov, frame, aspect, zNear, AnyFloat(random));
        sum.Add(matrix);
    }
}

/// Through a grid of pixels, into several scenes.
template <bool Points>
void Picks(Random& random, Sum& sum)
{
    constexpr int kColumns = 32;
    constexpr int kRows = 24;
    for (int i = 0; i < 40; ++i) {
        World world(random, 30);
        const TVec2<float> size{static_cast<float>(kColumns) - random.Between(0.0f, 2.0f), static_cast<float>(kRows)};
        for (int k = 0; k < kColumns * kRows; ++k) {
            const QPoint pixel(k % kColumns, k / kColumns);
            world.scene.camera.state.fieldOfView = random.Between(20.0f, 90.0f);
            if (Points) {
                Vec3 point{1.0f, 2.0f, 3.0f};
                sum.Add(FindIntersectionByScreenPoint(pixel, size, world.scene, point));
                sum.Add(point);
                continue;
            }
            INode* node = nullptr;
            const IMesh* mesh = nullptr;
            FindNodeByScreenPoint(pixel, size, world.scene, node, mesh);
            sum.Add(world.NumberOf(node));
            sum.Add(world.NumberOf(mesh));
        }
    }
}

} // namespace

std::vector<Trial> Views()
{
    return {{"turns", "Matrix::SetRotation", Rotations},
            {"turns", "DirectionFromAngles", Directions},
            {"turns", "CalculateCameraMatrix, GetCameraPosition, GetCameraDirection", Cameras},
            {"views", "CalculateProjectionMatrix", Projections},
            {"picks", "FindNodeByScreenPoint", Picks<false>},
            {"picks", "FindIntersectionByScreenPoint", Picks<true>}};
}

} // namespace Trials
