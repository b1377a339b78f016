// Prints each kind of value as debug output shows it, then stops where a debugger
// prints them, too. Both have to agree.
#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"

#include <QDebug>

#include <cstdio>
#include <limits>

namespace {

template <typename T>
void Print(const char* name, const T& value)
{
    QString text;
    QDebug(&text) << value;
    std::printf("%s = %s\n", name, qPrintable(text.trimmed()));
}

void Stop() {} // where the debugger does

} // namespace

int main()
{
    using Limits = std::numeric_limits<float>;
    const TVec2<float> size{640.0f, 0.1f};
    const TVec3<float> position{-1.5f, 1.0f / 3.0f, 1e-20f};
    const TVec3<float> odd{Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()};
    const TVec3<float>& reference = position;
    const TBBox<float> box({-1.0f, -2.0f, -3.0f}, {4.0f, 5.0f, 6.25f});
    const TBBox<float> empty;
    const ColorF color{0.25f, 0.5f, 0.999f, 1.0f};
    Matrix matrix;
    matrix.SetTranslation({10.0f, -20.0f, 1234567.0f});
    matrix(1, 2) = 0.125f;
    const Matrix2 texture(1.0f, 2.0f, 3.0f, 4.0f, 5.5f, -6.0f);

    Print("size", size);
    Print("position", position);
    Print("odd", odd);
    Print("reference", reference);
    Print("box", box);
    Print("empty", empty);
    Print("color", color);
    Print("matrix", matrix);
    Print("texture", texture);
    std::fflush(stdout);
    Stop();
}
