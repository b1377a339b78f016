#include "reference/plugins/primitives/Shapes.h"

#include <QColor>

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kFront = 270.0;

// Corners of the outline's curves.
constexpr int kDentSteps = 12;
constexpr int kHeelSteps = 6;
constexpr int kShoulderSteps = 24;
constexpr int kRimSteps = 8;

// Of the label: as thick as paper, and as far from the glass as keeps the two
// apart in a picture.
constexpr double kPaper = 0.0001;
constexpr double kGlue = 0.0001;

/// What is made of the values: all of it fits together.
struct Bottle {
    double radius, neckRadius, wall;
    double heel; ///< Radius between base and body.
    double dent;
    double bodyTop, neckBottom, lipBottom, top;
    double lipRadius;
    double rim; ///< Height of the rounding at the mouth.
};

Bottle BottleOf(const ShapeValues& values)
{
    Bottle b;
    b.radius = NumberIn(values, "bodyRadius");
    b.bodyTop = NumberIn(values, "bodyHeight");
    b.neckRadius = std::min(NumberIn(values, "neckRadius"), b.radius);
    b.wall = std::min({NumberIn(values, "wall"), 0.5 * b.neckRadius, 0.2 * b.bodyTop});
    b.heel = std::min(1.5 * b.wall + 0.08 * b.radius, 0.5 * b.bodyTop);
    b.dent = std::min(NumberIn(values, "dent"), 0.6 * b.bodyTop);
    b.neckBottom = b.bodyTop + NumberIn(values, "shoulderHeight");
    b.top = b.neckBottom + NumberIn(values, "neckHeight");
    b.lipRadius = b.neckRadius + NumberIn(values, "lip");
    const double lipHeight = std::min(0.8 * b.neckRadius, 0.3 * (b.top - b.neckBottom));
    b.lipBottom = b.top - lipHeight;
    b.rim = std::min((b.lipRadius - b.neckRadius + b.wall) / 2.0, lipHeight);
    return b;
}

ProfilePoint PointWithNormal(double radius, double z, double normalRadius, double normalZ)
{
    const double length = std::hypot(normalRadius, normalZ);
    return {radius, z, normalRadius / length, normalZ / length};
}

/// From the middle of the base to the lip, `depth` below the outer surface:
/// straight up in the base, towards the axis elsewhere.
Profile Side(const Bottle& b, double depth)
{
    Profile side;
    const double flat = b.radius - b.heel;
    for (int i = 0; i < kDentSteps; ++i) {
        const double part = static_cast<double>(i) / kDentSteps;
        const double slope = b.dent * kPi / 2.0 * std::sin(kPi * part) / flat;
        side.push_back(PointWithNormal(flat * part, b.dent * (0.5 + 0.5 * std::cos(kPi * part)) + depth, -slope, -1.0));
    }
    for (int i = 0; i <= kHeelSteps; ++i) {
        const double angle = kPi / 2.0 * i / kHeelSteps;
        const double radius = b.heel - depth, outwards = std::sin(angle), down = std::cos(angle);
        side.push_back({flat + radius * outwards, b.heel - radius * down, outwards, -down});
    }
    for (int i = 0; i <= kShoulderSteps; ++i) {
        const double part = static_cast<double>(i) / kShoulderSteps;
        const double narrowing = b.radius - b.neckRadius, height = b.neckBottom - b.bodyTop;
        const double slope = narrowing * kPi / 2.0 * std::sin(kPi * part) / height;
        side.push_back(PointWithNormal(b.neckRadius + narrowing * (0.5 + 0.5 * std::cos(kPi * part)) - depth,
                                       b.bodyTop + height * part, 1.0, slope));
    }
    return side;
}

/// Up the outside, over the rim, down the inside.
std::vector<Profile> GlassOutline(const Bottle& b)
{
    Profile outside = Side(b, 0.0);
    outside.push_back({b.neckRadius, b.lipBottom, 1.0, 0.0});
    const Profile underLip{{b.neckRadius, b.lipBottom, 0.0, -1.0}, {b.lipRadius, b.lipBottom, 0.0, -1.0}};

    Profile inside{{b.lipRadius, b.lipBottom, 1.0, 0.0}};
    const double inner = b.neckRadius - b.wall;
    const double middle = (b.lipRadius + inner) / 2.0, half = (b.lipRadius - inner) / 2.0;
    for (int i = 0; i <= kRimSteps; ++i) {
        const double angle = kPi * i / kRimSteps;
        const double outwards = std::cos(angle), up = std::sin(angle);
        inside.push_back(
            PointWithNormal(middle + half * outwards, b.top - b.rim + b.rim * up, outwards * b.rim, up * half));
    }
    Profile wall = Side(b, b.wall);
    std::reverse(wall.begin(), wall.end());
    for (const ProfilePoint& point : wall)
        inside.push_back({point.radius, point.z, -point.normalRadius, -point.normalZ});
    return {outside, underLip, inside};
}

std::vector<Profile> CapOutline(const Bottle& b, double height)
{
    const double inner = b.lipRadius + 0.03 * b.neckRadius, outer = inner + 0.06 * b.neckRadius;
    const double bottom = std::max(b.top - height, b.neckBottom);
    const double ceiling = b.top + 0.02 * b.neckRadius, top = b.top + 0.1 * b.neckRadius;
    const double bevel = (outer - inner) / 2.0;
    Profile upper;
    for (int i = 0; i <= kHeelSteps; ++i) {
        const double angle = kPi / 2.0 * i / kHeelSteps;
        const double outwards = std::cos(angle), up = std::sin(angle);
        upper.push_back({outer - bevel + bevel * outwards, top - bevel + bevel * up, outwards, up});
    }
    upper.insert(upper.begin(), {outer, bottom, 1.0, 0.0});
    upper.push_back({0.0, top, 0.0, 1.0});
    return {{{0.0, ceiling, 0.0, -1.0}, {inner, ceiling, 0.0, -1.0}},
            {{inner, ceiling, -1.0, 0.0}, {inner, bottom, -1.0, 0.0}},
            {{inner, bottom, 0.0, -1.0}, {outer, bottom, 0.0, -1.0}},
            upper};
}

/// A bent sheet of paper. Its edges and its back show the rim and the mirror
/// image of its front.
class Label {
public:
    Label(const Bottle& bottle, const ShapeValues& values, const Turning& turning, unsigned int nColumns)
        : m_turning(turning)
        , m_nColumns(nColumns)
        , m_back(bottle.radius + kGlue)
        , m_front(bottle.radius + kGlue + kPaper)
    {
        const double straight = bottle.bodyTop - bottle.heel;
        m_bottom = std::clamp(NumberIn(values, "labelBottom"), bottle.heel, bottle.heel + 0.9 * straight);
        m_top = std::min(m_bottom + NumberIn(values, "labelHeight"), bottle.bodyTop);
    }

    void AddTo(ShapeMesh& mesh) const
    {
        const unsigned int nRow = m_nColumns + 1;
        const TVec3<double> up{0.0, 0.0, 1.0}, down{0.0, 0.0, -1.0};
        AddGrid(mesh, 2, nRow, [&](auto row, auto column) { return At(m_front, row, column, Outwards(column)); });
        AddGrid(mesh, 2, nRow, [&](auto row, auto column) {
            const unsigned int mirrored = m_nColumns - column;
            return At(m_back, row, mirrored, -Outwards(mirrored));
        });
        AddGrid(mesh, 2, nRow, [&](auto row, auto column) { return At(row == 0 ? m_back : m_front, 0, column, up); });
        AddGrid(mesh, 2, nRow, [&](auto row, auto column) { return At(row == 0 ? m_front : m_back, 1, column, down); });
        if (m_nColumns == m_turning.nSegments) return;
        AddGrid(mesh, 2, 2, [&](auto row, auto column) { return AtEnd(column == 0 ? m_back : m_front, row, 0); });
        AddGrid(mesh, 2, 2,
                [&](auto row, auto column) { return AtEnd(column == 0 ? m_front : m_back, row, m_nColumns); });
    }

private:
    TVec3<double> Outwards(unsigned int nColumn) const { return m_turning.Outwards(nColumn % m_turning.nSegments); }
    GridPoint At(double radius, unsigned int nRow, unsigned int nColumn, const TVec3<double>& normal) const
    {
        const TVec3<double> outwards = Outwards(nColumn);
        const double sign = normal == -outwards ? -1.0 : 1.0;
        return {{radius * outwards.x, radius * outwards.y, nRow == 0 ? m_top : m_bottom},
                normal,
                {-sign * outwards.y, sign * outwards.x, 0.0},
                {static_cast<double>(nColumn) / m_nColumns, static_cast<double>(nRow)}};
    }
    GridPoint AtEnd(double radius, unsigned int nRow, unsigned int nColumn) const
    {
        const TVec3<double> outwards = Outwards(nColumn);
        const double sign = nColumn == 0 ? -1.0 : 1.0;
        GridPoint point = At(radius, nRow, nColumn, {-sign * outwards.y, sign * outwards.x, 0.0});
        point.direction = {-sign * outwards.x, -sign * outwards.y, 0.0};
        return point;
    }

    const Turning& m_turning;
    const unsigned int m_nColumns;
    const double m_back, m_front;
    double m_bottom, m_top;
};

QMap<QString, QVariant> Material(const QColor& color, double opacity, double shininess, double specularLevel)
{
    return {{QStringLiteral("diffuse"), color},
            {QStringLiteral("opacity"), opacity},
            {QStringLiteral("shininess"), shininess},
            {QStringLiteral("specularLevel"), specularLevel}};
}

std::vector<ShapeMesh> MakeBottle(const ShapeValues& values)
{
    const Bottle bottle = BottleOf(values);
    const unsigned int nSegments = CountIn(values, "segments");
    const double labelSegments = NumberIn(values, "labelAngle") / 360.0 * nSegments;
    const auto nLabel = std::max(1u, static_cast<unsigned int>(std::lround(labelSegments)));
    const Turning turning{nSegments, kFront - 180.0 * nLabel / nSegments};

    std::vector<ShapeMesh> meshes(1);
    meshes[0].name = meshes[0].materialName = QStringLiteral("glass");
    meshes[0].materialParameters = Material(QColor(96, 138, 96), 0.55, 300.0, 0.8);
    AddTurned(meshes[0], GlassOutline(bottle), turning);
    if (values.value(QStringLiteral("label")).toBool()) {
        ShapeMesh label;
        label.name = label.materialName = QStringLiteral("label");
        label.materialParameters = Material(QColor(244, 240, 228), 1.0, 10.0, 0.05);
        Label(bottle, values, turning, nLabel).AddTo(label);
        meshes.push_back(label);
    }
    if (values.value(QStringLiteral("cap")).toBool()) {
        ShapeMesh cap;
        cap.name = cap.materialName = QStringLiteral("cap");
        cap.materialParameters = Material(QColor(120, 24, 32), 1.0, 60.0, 0.4);
        AddTurned(cap, CapOutline(bottle, NumberIn(values, "capHeight")), turning);
        meshes.push_back(cap);
    }
    return meshes;
}

sGeneratorPreset Preset(const char* title, std::initializer_list<std::pair<const char*, QVariant>> values)
{
    sGeneratorPreset preset{QLatin1String(title), {}};
    for (const auto& [name, value] : values)
        preset.values[QLatin1String(name)] = value;
    return preset;
}

QList<sGeneratorPreset> Presets()
{
    return {Preset("Wine bottle", {{"bodyRadius", 0.0375},
                                   {"bodyHeight", 0.19},
                                   {"shoulderHeight", 0.05},
                                   {"neckRadius", 0.0145},
                                   {"neckHeight", 0.065},
                                   {"lip", 0.0015},
                                   {"dent", 0.025},
                                   {"wall", 0.003},
                                   {"label", true},
                                   {"labelHeight", 0.1},
                                   {"labelBottom", 0.05},
                                   {"labelAngle", 180.0},
                                   {"cap", false}}),
            Preset("Beer bottle", {{"bodyRadius", 0.0305},
                                   {"bodyHeight", 0.125},
                                   {"shoulderHeight", 0.065},
                                   {"neckRadius", 0.0135},
                                   {"neckHeight", 0.04},
                                   {"lip", 0.0015},
                                   {"dent", 0.004},
                                   {"wall", 0.0025},
                                   {"label", true},
                                   {"labelHeight", 0.07},
                                   {"labelBottom", 0.03},
                                   {"labelAngle", 360.0},
                                   {"cap", true},
                                   {"capHeight", 0.007}}),
            Preset("Flask", {{"bodyRadius", 0.05},
                             {"bodyHeight", 0.05},
                             {"shoulderHeight", 0.07},
                             {"neckRadius", 0.017},
                             {"neckHeight", 0.035},
                             {"lip", 0.004},
                             {"dent", 0.0},
                             {"wall", 0.002},
                             {"label", false},
                             {"cap", false}})};
}

} // namespace

Shape BottleShape()
{
    return {QStringLiteral("Bottle"),
            {{QStringLiteral("bodyRadius"), QStringLiteral("Radius of the body"), 0.0375, 0.005, 10.0},
             {QStringLiteral("bodyHeight"), QStringLiteral("Height of the body"), 0.19, 0.01, 50.0},
             {QStringLiteral("shoulderHeight"), QStringLiteral("Height of the shoulder"), 0.05, 0.001, 20.0},
             {QStringLiteral("neckRadius"), QStringLiteral("Radius of the neck"), 0.0145, 0.003, 10.0},
             {QStringLiteral("neckHeight"), QStringLiteral("Height of the neck"), 0.065, 0.005, 20.0},
             {QStringLiteral("lip"), QStringLiteral("Width of the lip"), 0.0015, 0.0, 1.0},
             {QStringLiteral("dent"), QStringLiteral("Height of the base's dent"), 0.025, 0.0, 20.0},
             {QStringLiteral("wall"), QStringLiteral("Thickness of the wall"), 0.003, 0.0005, 1.0},
             {QStringLiteral("segments"), QStringLiteral("Segments around"), 64, 8, 512},
             {QStringLiteral("label"), QStringLiteral("Label"), true, {}, {}},
             {QStringLiteral("labelHeight"), QStringLiteral("Height of the label"), 0.1, 0.001, 50.0},
             {QStringLiteral("labelBottom"), QStringLiteral("Lower edge of the label"), 0.05, 0.0, 50.0},
             {QStringLiteral("labelAngle"), QStringLiteral("Angle that the label covers"), 180.0, 10.0, 360.0},
             {QStringLiteral("cap"), QStringLiteral("Cap"), false, {}, {}},
             {QStringLiteral("capHeight"), QStringLiteral("Height of the cap"), 0.012, 0.001, 20.0}},
            Presets(),
            MakeBottle};
}

} // namespace Host
