#include "reference/desk/MaterialList.h"

#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IScene.h"
#include "lumenta/platform/IDocumentContext.h"
#include "reference/desk/Drops.h"
#include "reference/desk/Guarded.h"
#include "reference/host/Studio.h"

#include <QDrag>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr int kSwatch = 36; ///< Pixels.

TVec3<float> ColourAt(const IMaterial& material, float x, float y)
{
    const ColorF base = material.GetDiffuseColor();
    const IImage* const pImage = material.GetImage(eMaterialSlotDiffuse);
    if (!pImage || !material.IsSlotEnabled(eMaterialSlotDiffuse)) return {base.r, base.g, base.b};
    const ColorF texel = pImage->Sample({x * 0.5f + 0.5f, y * 0.5f + 0.5f}, true);
    const auto times = [](float linear, float shown) {
        return linear * LinearFromSrgb(static_cast<int>(shown * 255.0f));
    };
    return {times(base.r, texel.r), times(base.g, texel.g), times(base.b, texel.b)};
}

/// Of a unit ball, at a point whose y runs down.
QRgb BallAt(const IMaterial& material, float x, float y)
{
    const float z = std::sqrt(std::max(0.0f, 1.0f - x * x - y * y));
    const float facing = std::max(0.0f, -0.48f * x - 0.6f * y + 0.64f * z);
    const float mirrored = std::max(0.0f, 2.0f * facing * z - 0.64f); // of the light, towards the eye
    const float shine = material.GetSpecularLevel() * std::pow(mirrored, material.GetShininess());
    const float light = 0.25f + 0.75f * facing;
    const float glow = material.GetEmissionLevel();
    const TVec3<float> colour = ColourAt(material, x, y);
    const ColorF gloss = material.GetSpecularColor();
    const ColorF own = material.GetEmissionColor();
    return PixelFromLinear({colour.x * light + gloss.r * shine + own.r * glow,
                            colour.y * light + gloss.g * shine + own.g * glow,
                            colour.z * light + gloss.b * shine + own.b * glow});
}

} // namespace

QPixmap MaterialSwatch(const IMaterial& material, int nSide)
{
    QImage image(nSide, nSide, QImage::Format_ARGB32);
    const float half = static_cast<float>(nSide) * 0.5f;
    for (int row = 0; row < nSide; ++row) {
        for (int column = 0; column < nSide; ++column) {
            const float x = (static_cast<float>(column) + 0.5f) / half - 1.0f;
            const float y = (static_cast<float>(row) + 0.5f) / half - 1.0f;
            // The rim covers its pixels in part.
            const float cover = std::clamp((1.0f - std::hypot(x, y)) * half, 0.0f, 1.0f);
            const float opacity = std::max(0.15f, material.GetOpacity());
            const QRgb pixel = BallAt(material, x, y);
            image.setPixel(column, row,
                           qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), static_cast<int>(255.0f * cover * opacity)));
        }
    }
    return QPixmap::fromImage(image);
}

MaterialList::MaterialList(IDocumentContext& document, QWidget* pParent)
    : QListWidget(pParent)
    , m_document(document)
{
    setIconSize({kSwatch, kSwatch});
    setDragEnabled(true);
    connect(document.GetScene(), &IScene::sceneChanged, this, [this](eSceneChangedFlags what) {
        if (what & eSceneChangedMaterials) Rebuild();
    });
    connect(this, &QListWidget::currentRowChanged, this, [this] { Q_EMIT chosen(GetChosen()); });
    connect(this, &QListWidget::itemClicked, this, [this] { Q_EMIT chosen(GetChosen()); });
    Rebuild();
}

IMaterial* MaterialList::GetChosen() const
{
    const std::vector<IMaterial*>& materials = m_document.GetScene()->GetMaterials();
    const int nRow = currentRow();
    return nRow >= 0 && nRow < static_cast<int>(materials.size()) ? materials[static_cast<std::size_t>(nRow)] : nullptr;
}

void MaterialList::Rebuild()
{
    const QSignalBlocker quiet(this);
    const int nRow = currentRow();
    clear();
    for (IMaterial* const pMaterial : m_document.GetScene()->GetMaterials()) {
        Show(count());
        disconnect(pMaterial, nullptr, this, nullptr);
        connect(pMaterial, &IMaterial::changed, this, [this, pMaterial] {
            const std::vector<IMaterial*>& materials = m_document.GetScene()->GetMaterials();
            const auto found = std::find(materials.begin(), materials.end(), pMaterial);
            if (found != materials.end()) Show(static_cast<int>(found - materials.begin()));
        });
    }
    setCurrentRow(std::min(nRow, count() - 1));
}

void MaterialList::Show(int nRow)
{
    if (nRow == count()) addItem(new QListWidgetItem);
    const IMaterial& material = *m_document.GetScene()->GetMaterials()[static_cast<std::size_t>(nRow)];
    const QPixmap swatch = MaterialSwatch(material, kSwatch);
    QIcon icon(swatch);
    icon.addPixmap(swatch, QIcon::Selected); // untinted
    item(nRow)->setIcon(icon);
    item(nRow)->setText(material.GetName().isEmpty() ? QStringLiteral("(no name)") : material.GetName());
}

void MaterialList::startDrag(Qt::DropActions)
{
    IUserInterface& ui = *m_document.GetUserInterface();
    Guarded(ui, [&] {
        const IMaterial* const pMaterial = GetChosen();
        if (!pMaterial) return;
        auto* const pDrag = new QDrag(this); // the toolkit ends it, and what it carries
        pDrag->setMimeData(MakeMimeData(*pMaterial, ui).release());
        pDrag->setPixmap(MaterialSwatch(*pMaterial, kSwatch));
        pDrag->exec(Qt::CopyAction);
    });
}

} // namespace Host
