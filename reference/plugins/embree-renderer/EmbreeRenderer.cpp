#include "reference/plugins/embree-renderer/EmbreeRenderer.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/embree-renderer/LightTracer.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace Host {

namespace {

/// Rows are handed out one by one to whoever is free, the caller included.
class RowWork {
public:
    RowWork(const LightTracer& tracer, QImage& image)
        : m_tracer(tracer)
        , m_pixels(image.bits()) // once: it must not detach on several threads
        , m_bytesPerLine(static_cast<std::size_t>(image.bytesPerLine()))
        , m_size(image.size())
    {
    }

    /// Works until no row is left.
    void Run() noexcept
    {
        while (RunOne()) {}
    }

    /// False where no row was left.
    bool RunOne() noexcept
    {
        const int y = m_nextRow.fetch_add(1);
        if (y >= m_size.height())
            return false;
        QRgb* const row = reinterpret_cast<QRgb*>(m_pixels + static_cast<std::size_t>(y) * m_bytesPerLine);
        for (int x = 0; x < m_size.width(); ++x)
            row[x] = PixelFromLinear(m_tracer.PixelColour(x, y), DitherAt(x, y));
        m_rowsDone.fetch_add(1);
        return true;
    }

    bool HasRowsLeft() const noexcept { return m_nextRow.load() < m_size.height(); }

    /// Leaves the remaining rows undone.
    void Stop() noexcept { m_nextRow.store(m_size.height()); }

    int Percent() const noexcept
    {
        return static_cast<int>(qint64(100) * m_rowsDone.load() / m_size.height());
    }

private:
    const LightTracer& m_tracer;
    uchar* const m_pixels;
    const std::size_t m_bytesPerLine;
    const QSize m_size;
    std::atomic<int> m_nextRow{0};
    std::atomic<int> m_rowsDone{0};
};

/// Threads beside the caller's. Joined whatever happens.
class Helpers {
public:
    Helpers(RowWork& work, unsigned int count)
        : m_work(work)
    {
        try {
            for (unsigned int i = 0; i < count; ++i)
                m_threads.emplace_back([&work] { work.Run(); });
        } catch (const std::exception&) {
            // No more threads, or no memory for them: fewer give the same picture.
        }
    }

    ~Helpers()
    {
        m_work.Stop(); // changes nothing unless the caller left early
        Join();
    }

    void Join()
    {
        for (std::thread& thread : m_threads)
            thread.join();
        m_threads.clear();
    }

private:
    RowWork& m_work;
    std::vector<std::thread> m_threads;
};

unsigned int ThreadCount(const PictureRequest& request)
{
    const unsigned int wanted = request.threads > 0 ? static_cast<unsigned int>(request.threads)
                                                    : std::max(std::thread::hardware_concurrency(), 1u);
    return std::min(wanted, static_cast<unsigned int>(request.size.height()));
}

class EmbreeRenderer final : public IPictureRenderer {
public:
    QString GetName() const override { return QStringLiteral("embree"); }

    QImage Render(const PictureRequest& request, const Progress& progress) override
    {
        if (request.size.isEmpty())
            return {};
        QImage image = NewPicture(request.size, QImage::Format_RGB32);
        image.fill(Qt::black);
        if (request.MustStop())
            return image;
        const LightTracer tracer(request);
        if (progress)
            progress(1);
        RowWork work(tracer, image);
        Helpers helpers(work, ThreadCount(request) - 1);
        bool isWhole = true;
        while (isWhole && work.RunOne()) {
            if (progress)
                progress(std::clamp(work.Percent(), 1, 99));
            isWhole = !work.HasRowsLeft() || !request.MustStop();
        }
        work.Stop(); // no rows are left, or none are wanted
        helpers.Join();
        if (progress && isWhole)
            progress(100);
        return image;
    }
};

} // namespace

std::unique_ptr<IPictureRenderer> CreateEmbreeRenderer()
{
    return std::make_unique<EmbreeRenderer>();
}

} // namespace Host
