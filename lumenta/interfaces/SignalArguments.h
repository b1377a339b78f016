#pragma once

#include "lumenta/Export.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/interfaces/ISnapshot.h"

#include <QMetaType>
#include <QString>

#include <vector>

/// \file
/// What the signals of the contracts carry. Flags are plain enumerations, one
/// bit an enumerator; several at once are joined with `|`.

/// What changed on a node. Several at once are joined.
enum eNodeChangedFlags {
    eNodeChangedName = 0x01,
    eNodeChangedMatrix = 0x02,
    eNodeChangedVisibility = 0x04, ///< Shown or hidden, or excluded from tracing.
    eNodeChangedMesh = 0x08,       ///< Vertices, triangles or boxes of its meshes.
    eNodeChangedMaterial = 0x10,   ///< Which material a mesh wears; not the material itself.
    eNodeChangedLight = 0x20       ///< Any value of a light.
};

/// What changed in a scene beside its nodes. Several at once are joined.
enum eSceneChangedFlags {
    eSceneChangedHierarchy = 0x001, ///< Nodes came, went or moved within the tree.
    eSceneChangedMaterials = 0x002, ///< The list of materials.
    eSceneChangedGround = 0x004,
    eSceneChangedBackground = 0x008,
    eSceneChangedLighting = 0x010,  ///< Sun or ambient light.
    eSceneChangedAnimation = 0x020, ///< The list of animations, the one playing, or its time.
    eSceneChangedOutput = 0x040,    ///< Unit or render size.
    eSceneChangedDocument = 0x080   ///< File name, or whether there is something to save.
};

/// The texture slots of a material. `eMaterialSlotCount` is how many there are.
enum eMaterialSlot {
    eMaterialSlotDiffuse,    ///< Multiplies the diffuse colour.
    eMaterialSlotSpecular,   ///< Multiplies the colour of highlights.
    eMaterialSlotReflection, ///< Multiplies the reflection colour.
    eMaterialSlotOpacity,    ///< Brightness times alpha multiplies the opacity.
    eMaterialSlotBump,       ///< Brightness is height.
    eMaterialSlotEmission,   ///< Multiplies the emission colour.
    eMaterialSlotCount
};

/// How a rendering ended.
enum eRenderExitCode {
    eRenderExitSuccess, ///< The picture is complete.
    eRenderExitStopped, ///< IRender::Stop() ended it; the picture is what there was.
    eRenderExitFailed   ///< The last log() tells why.
};

/// Both.
constexpr eNodeChangedFlags operator|(eNodeChangedFlags a, eNodeChangedFlags b)
{
    return static_cast<eNodeChangedFlags>(static_cast<int>(a) | static_cast<int>(b));
}

/// Both.
constexpr eSceneChangedFlags operator|(eSceneChangedFlags a, eSceneChangedFlags b)
{
    return static_cast<eSceneChangedFlags>(static_cast<int>(a) | static_cast<int>(b));
}

/// One batch of modifications. Before the batch it tells what is planned, as
/// far as that is known; after it what came of it, each node once a list. A node
/// that is gone by then stands in `removed` alone, and one that came within the
/// batch and is gone in none.
///
/// Where a slot changes the scene when a batch has ended, that is a batch of its
/// own: its pair of signals may come to a receiver within the pair around it, or
/// before the `afterSceneUpdate` that the slot answers. So count the pairs, and
/// don't rely on which of two ends belongs to which beginning.
///
/// Nodes are named by their address. A removed node stays alive until control
/// returns to the event loop, so a receiver in the same thread may still ask it
/// for its name; behind a queued connection an address is only good for
/// comparing.
struct sSceneModifications {
    QString strTitle;                  ///< For a person: "Group 3 objects". May be empty.
    std::vector<const INode*> added;   ///< In the order in which they came.
    std::vector<const INode*> removed; ///< All of them, also those under another one, each branch in tree order.
                                       ///< Before the batch the tops of branches alone.
    std::vector<const INode*> moved;   ///< That have another parent or another place under it.
    std::vector<const INode*> changed; ///< That changed in themselves: name, matrix, material, ...
    bool materialsChanged = false;     ///< Materials came, went or changed.
};

Q_DECLARE_METATYPE(eNodeChangedFlags)
Q_DECLARE_METATYPE(eSceneChangedFlags)
Q_DECLARE_METATYPE(eMaterialSlot)
Q_DECLARE_METATYPE(eRenderExitCode)
Q_DECLARE_METATYPE(sSceneModifications)
Q_DECLARE_METATYPE(const INode*)
Q_DECLARE_METATYPE(const ISnapshot*)

/// Registers the types above, and `IImage*`, under the names that the signals'
/// signatures use.
///
/// Needed once by whoever connects to a signal of the contracts *queued*, so
/// across threads; direct connections do without. Loading the library registers
/// nothing. May be called any number of times, from any thread.
LUMENTA_EXPORT void RegisterSignalArgumentTypes();
