#include "benchmarks/NaiveO3.h"
#include "benchmarks/Peers.h"
#include "benchmarks/Rows.h"
#include "benchmarks/Workloads.h"

namespace Bench {

namespace {

constexpr std::size_t kCount = 100; ///< Three lists of so many fit the innermost cache.

struct Matrices {
    std::vector<Matrix> a, b, results;

    Matrices()
        : results(kCount)
    {
        Workloads::Random random(7);
        for (std::size_t i = 0; i < kCount; ++i) {
            a.push_back(Workloads::RandomTransform(random));
            b.push_back(Workloads::RandomTransform(random));
        }
    }

    void ForEach(decltype(Naive::Multiply) multiply)
    {
        for (std::size_t i = 0; i < kCount; ++i)
            multiply(results[i], a[i], b[i]);
    }

    void ForEach(decltype(Naive::Inverse) invert)
    {
        for (std::size_t i = 0; i < kCount; ++i)
            invert(results[i], a[i]);
    }
};

bool AreNear(const std::vector<Matrix>& a, const std::vector<Matrix>& b)
{
    const auto near = [](float x, float y) { return std::fabs(x - y) <= 1e-3f * (1.0f + std::fabs(x)); };
    return std::equal(a.begin(), a.end(), b.begin(),
                      [near](const Matrix& p, const Matrix& q) { return std::equal(p.m, p.m + 16, q.m, near); });
}

void Check(Matrices& matrices, const std::vector<Way>& ways)
{
    RequireSame(
        ways, [&] { matrices.results.assign(kCount, Matrix()); }, [&] { return matrices.results; });
    const std::vector<Matrix> plain = matrices.results;
    for (const Way& way : ways) {
        way.run();
        Require(AreNear(plain, matrices.results), "matrices, nearly: " + way.name);
    }
}

Contest Products()
{
    const auto m = std::make_shared<Matrices>();
    const std::vector<Way> ways{{kOurs, [m] { m->ForEach(Multiply); }},
                                {kNaive, [m] { m->ForEach(Naive::Multiply); }},
                                {kNaiveO3, [m] { m->ForEach(NaiveO3::Multiply); }},
                                {kGlm, [m] { Peers::MultiplyWithGlm(m->results, m->a, m->b); }},
                                {kEigen, [m] { Peers::MultiplyWithEigen(m->results, m->a, m->b); }}};
    Check(*m, ways);
    return {kCount, ways};
}

Contest Inverses()
{
    const auto m = std::make_shared<Matrices>();
    const std::vector<Way> ways{{kOurs, [m] { m->ForEach(Inverse); }},
                                {kNaive, [m] { m->ForEach(Naive::Inverse); }},
                                {kNaiveO3, [m] { m->ForEach(NaiveO3::Inverse); }},
                                {kGlm, [m] { Peers::InvertWithGlm(m->results, m->a); }},
                                {kEigen, [m] { Peers::InvertWithEigen(m->results, m->a); }}};
    Check(*m, ways);
    return {kCount, ways};
}

} // namespace

void AddMatrixRows(std::vector<Row>& rows)
{
    rows.push_back({"Matrix/product", "product", true, {}, Products});
    rows.push_back({"Matrix/inverse", "inverse", true, {}, Inverses});
}

} // namespace Bench
