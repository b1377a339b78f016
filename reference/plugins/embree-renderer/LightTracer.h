#pragma once

#include "reference/host/Surface.h"
#include "reference/plugins/embree-renderer/TriangleTree.h"

namespace Host {

/// The light that reaches the camera through a pixel. Reentrant: all threads
/// share one.
class LightTracer {
public:
    explicit LightTracer(const PictureRequest& request);

    /// The mean over the pixel's samples, linear. Depends on nothing but the
    /// request and the pixel.
    TVec3<float> PixelColour(int x, int y) const;

private:
    /// Which of the pixel's samples is being taken.
    struct Sample {
        std::uint32_t pixelSeed;
        std::uint32_t index;
    };

    /// A point that light falls on, and where rays may start from it without
    /// meeting it again.
    struct ShadingPoint {
        TVec3<float> origin;
        TVec3<float> faceNormal;   ///< Of the flat triangle, towards the viewer.
        TVec3<float> smoothNormal; ///< On the same side, but for what bumps turn.
        TVec3<float> towardsEye;
        const Surface* surface;    ///< Null for the floor.
    };

    /// What arrives at a point.
    struct Light {
        TVec3<float> sun;
        TVec3<float> sky;   ///< And from the floor, and from what hides either.
        TVec3<float> lamps;
        TVec3<float> shine; ///< Highlights of the lamps.
        TVec3<float> lost;  ///< What would have come as well if nothing hid it.
    };

    /// \param behind   what is seen where nothing is
    /// \param nBounce  how many mirrors the ray has met
    TVec3<float> AlongRay(Ray3 ray, const TVec3<float>& behind, const Sample& sample, int nBounce) const;
    TVec3<float> MirroredLight(const ShadingPoint& point, const Sample& sample, int nBounce) const;
    TVec3<float> SurfaceLight(const ShadingPoint& point, const TVec3<float>& colour, const TVec2<float>& texCoord,
                              const Sample& sample) const;
    TVec3<float> FloorOr(const TVec3<float>& behind, const Ray3& ray, const Sample& sample) const;

    ShadingPoint PointAt(const TriangleHit& hit, const Ray3& ray) const;
    TVec3<float> Bumped(const TVec3<float>& normal, const TriangleHit& hit, const TVec3<float> (&corners)[3],
                        const TVec3<float>& towardsEye) const;
    TVec2<float> TexCoordAt(const TriangleHit& hit) const;
    Light LightAt(const ShadingPoint& point, const TVec3<float>& bounce, const Sample& sample) const;
    void AddSun(Light& light, const ShadingPoint& point, const TVec2<float>& random) const;
    void AddSky(Light& light, const ShadingPoint& point, const TVec3<float>& bounce,
                const TVec2<float>& random) const;
    void AddLamp(Light& light, const ShadingPoint& point, const Lamp& lamp, const TVec2<float>& random) const;

    /// What of each colour gets through to a point from as far as `most`.
    TVec3<float> Transmittance(const ShadingPoint& point, const TVec3<float>& direction, float most) const;

    const std::vector<PosedMesh>& m_meshes;
    Studio m_studio;
    SurfaceTable m_surfaces;
    TriangleTree m_tree;
    bool m_hasTransparent;
    bool m_hasSun;
    bool m_hasSky;
    std::uint32_t m_sampleCount;
};

} // namespace Host
