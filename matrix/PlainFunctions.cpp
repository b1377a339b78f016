// The C library's functions that the library calls, out of sums, products, quotients and
// square roots: a program that is linked with this has the same ones everywhere. They
// are rough, some four digits, which is enough to see that nothing else differs.

namespace {

constexpr double kPi = 3.14159265358979323846;

double Sine(double x)
{
    if (!(x > -1e9 && x < 1e9)) return x - x; // a large one counts as 0
    x -= static_cast<double>(static_cast<long long>(x / (2.0 * kPi))) * (2.0 * kPi);
    if (x > kPi) x -= 2.0 * kPi;
    if (x < -kPi) x += 2.0 * kPi;
    double sum = x;
    double term = x;
    for (int i = 2; i < 20; i += 2) {
        term *= -(x * x) / (i * (i + 1));
        sum += term;
    }
    return sum;
}

/// For 0 to 1; of anything else the root makes it not a number, or is as rough.
double ArcCosine(double x)
{
    // Abramowitz and Stegun, "Handbook of Mathematical Functions", 4.4.45
    return __builtin_sqrt(1.0 - x) * (((-0.0187293 * x + 0.0742610) * x - 0.2121144) * x + 1.5707288);
}

} // namespace

extern "C" {

float sinf(float x) noexcept;
float cosf(float x) noexcept;
float tanf(float x) noexcept;
float acosf(float x) noexcept;
void sincosf(float x, float* pSine, float* pCosine) noexcept;

__attribute__((visibility("default"))) float sinf(float x) noexcept
{
    return static_cast<float>(Sine(static_cast<double>(x)));
}

__attribute__((visibility("default"))) float cosf(float x) noexcept
{
    return static_cast<float>(Sine(static_cast<double>(x) + kPi / 2.0));
}

__attribute__((visibility("default"))) float tanf(float x) noexcept
{
    return sinf(x) / cosf(x);
}

__attribute__((visibility("default"))) float acosf(float x) noexcept
{
    return static_cast<float>(ArcCosine(static_cast<double>(x)));
}

__attribute__((visibility("default"))) void sincosf(float x, float* pSine, float* pCosine) noexcept
{
    *pSine = sinf(x);
    *pCosine = cosf(x);
}
}
