#pragma once

#include "lumenta/Export.h"
#include "lumenta/foundation/Color.h"

#include <QObject>

/// What a node offers that is a lamp: a ball that shines in all directions from
/// the origin of its node.
///
/// **Who implements it:** the host, in the class of its lights, beside INode.
/// That class must say `Q_INTERFACES(ILightNode)`: without it the cast is null
/// and the node is taken for one that gives no light. Its GetType() answers
/// eNodeTypeLight.
/// **Who calls it:** boxes and picking (the radius), renderers, panels. Get it
/// by `qobject_cast<ILightNode*>(pNode)`.
/// **Thread:** the scene's. **Ownership:** lives and dies with its node.
///
/// Setters announce themselves by the scene's `nodeChanged`.
class LUMENTA_EXPORT ILightNode {
public:
    /// Linear; not yet scaled by the intensity.
    virtual ColorF GetColor() const = 0;

    virtual void SetColor(const ColorF& color) = 0;

    /// Of the light that falls on a surface one unit away and facing the lamp;
    /// 1 is as bright as the sun of a new scene. It fades with the square of
    /// the distance. 0 for a lamp that is off.
    virtual float GetIntensity() const = 0;

    /// \param intensity negative, or no number, counts as 0
    virtual void SetIntensity(float intensity) = 0;

    /// Whether things that stand in its light throw a shadow.
    virtual bool CastsShadows() const = 0;

    /// In world units, whatever the scale of the node: the sphere that is
    /// picked and measured, and the size that softens shadows.
    virtual float GetRadius() const = 0;

    /// \param radius negative, or no number, counts as 0
    virtual void SetRadius(float radius) = 0;

    virtual void SetCastsShadows(bool bCasts) = 0;

protected:
    ILightNode() = default;
    ILightNode(const ILightNode&) = default;
    ILightNode& operator=(const ILightNode&) = default;
    ~ILightNode() = default; // nobody deletes a node by one of its sides
};

Q_DECLARE_INTERFACE(ILightNode, "com.quillwright.lumenta.ILightNode")
