#include "lumenta/render/RenderSizing.h"
#include "tests/foundation/Exact.h"

namespace {

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();
constexpr unsigned long long kDay = 86400000;

QString Text(const QSize& size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

QString Adjusted(int width, int height, float aspect, bool keepAspect = false)
{
    return Text(AdjustResolution({width, height}, aspect, keepAspect));
}

QString Times(unsigned long long finished, unsigned long long current, int frameCount, int currentFrame, int percent)
{
    const auto times = GetRenderingTimes(finished, current, frameCount, currentFrame, percent);
    QStringList texts;
    for (const unsigned long long time : times)
        texts << QString::number(time);
    return texts.join(' ');
}

} // namespace

class SizingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Sizing_data()
    {
        AnswerColumns();
        Row("render: neither side", Adjusted(0, -5, 2.0f), "800 x 400");
        Row("render: neither side, aspect kept", Adjusted(0, 0, 0.05f, true), "410 x 8192");
        Row("render: a width", Adjusted(1000, 0, 3.0f), "1000 x 333");
        Row("render: a half goes up", Adjusted(1001, 0, 2.0f), "1001 x 501");
        Row("render: a half is added in float", Adjusted(0, 1, std::nextafter(0.5f, 0.0f)), "1 x 1");
        Row("render: a height", Adjusted(0, 300, 2.0f), "600 x 300");
        Row("render: a height, aspect kept", Adjusted(0, 333, 0.5f, true), "167 x 333");
        Row("render: a height that makes it too wide", Adjusted(0, 5000, 3.0f), "8192 x 2731");
        Row("render: both, as they are", Adjusted(1000, 300, 2.0f), "1000 x 300");
        Row("render: both, the height follows", Adjusted(1000, 300, 2.0f, true), "1000 x 500");
        Row("render: a width that makes it too high", Adjusted(10000, 0, 0.5f), "4096 x 8192");
        Row("render: both too large", Adjusted(9000, kMost, 0.5f), "8192 x 8192");
        Row("render: aspect zero", Adjusted(100, 0, 0.0f), "0 x 8192");
        Row("render: aspect without end", Adjusted(0, 100, kInfinity), "8192 x 0");
        Row("render: aspect of no number", Adjusted(100, 0, kNaN), "100 x 0");
        Row("render: aspect below zero, towards zero", Adjusted(0, 3, -0.4f), "0 x 3");
        Row("render: aspect below zero saturates", Adjusted(100, 0, -1e-30f, true), Text({100, kLeast}));

        const auto fit = [](QSize size, QSize bounds) { return Text(FitSizeToAnother(size, bounds)); };
        Row("fit: too wide", fit({400, 100}, {200, 200}), "200 x 50");
        Row("fit: too high, by more than too wide", fit({400, 301}, {399, 100}), "133 x 100");
        Row("fit: it does, to the last pixel", fit({16777217, 1}, {16777217, 1}), "16777217 x 1");
        Row("fit: into nothing", fit({400, 300}, {0, 0}), "0 x 0");
        Row("fit: nothing wide into nothing wide", fit({0, 300}, {0, 100}), "0 x 100");
        Row("fit: into less than nothing saturates", fit({0, 5}, {10, -5}), Text({0, kMost}));

        const auto preview = [](QSize size, int width, int most) {
            return Text(GetOptimapPreviewSize(size, width, most));
        };
        Row("preview: too high, and still", preview({1000, 2000}, 300, 500), "300 x 500");
        Row("preview: too high, but not when shrunk", preview({1000, 999}, 333, 500), "333 x 332");
        Row("preview: divided, then multiplied", preview({49, 49}, 1, 10), "1 x 0");
        Row("preview: low enough: the own width, the preview's height", preview({1000, 400}, 500, 400), "1000 x 200");
        Row("preview: low enough, never enlarged", preview({100, 40}, 500, 400), "100 x 40");
        Row("preview: no width, too high", preview({0, 500}, 500, 400), "500 x 400");
        Row("preview: below zero saturates", preview({-1, kMost}, kMost, 5), Text({kMost, kLeast}));

        const auto window = [](QSize image, int extra, QSize most = {1000, 800}) {
            return Text(GetOptimalRenderWindowSize(image, {320, 240}, most, extra));
        };
        Row("window: too wide", window({2000, 901}, 50), "1000 x 501");
        Row("window: too wide, then as high as may be", window({2000, 901}, 50, {1000, 501}), "1000 x 501");
        Row("window: too high", window({900, 900}, 50), "750 x 800");
        Row("window: too wide, then too high", window({2001, 2000}, 100), "700 x 800");
        Row("window: the least wins over the most", window({640, 480}, 0, {100, 100}), "320 x 240");
        Row("window: no height", window({2000, 0}, 50), "1000 x 240");
        Row("window: no width, and none to be had", window({0, 500}, 0, {0, 800}), "320 x 500");
        Row("window: the rest of the window is out of bounds", window({640, 480}, kMost, {1000, -10}), "320 x 240");
        Row("window: no image, and no room for it", window({0, 0}, 900), "320 x 800");

        Row("times: first frame, nothing known", Times(0, 5000, 10, 1, 0), "5000 55000 5000 595000");
        Row("times: first frame, over a minute", Times(0, 70000, 10, 1, -1), "70000 630000 70000 6930000");
        Row("times: a minute and no more", Times(0, 60000, 2, 1, 0), "60000 0 60000 60000");
        Row("times: as those before", Times(20001, 1000, 5, 2, 0), "1000 19001 21001 79004");
        Row("times: longer than those before", Times(20000, 10001, 4, 3, 0), "10001 90009 30001 190019");
        Row("times: by its percentage", Times(10000, 1000, 5, 3, 30), "1000 2333 11000 11221");
        Row("times: by its first percent", Times(0, 1000, 1, 1, 1), "1000 99000 1000 99000");
        Row("times: the last, done", Times(10000, 1000, 5, 5, 100), "1000 0 11000 0");
        Row("times: beyond the last", Times(100, 10, 1, 3, 100), "10 0 110 18446744073709551544");
        Row("times: beyond all frames that can be", Times(0, 5, kLeast, kMost, 100), "5 0 5 0");
        Row("times: years", Times(kDay * 1000, kDay * 100, 1000, 11, 50),
            "8640000000 8640000000 95040000000 9330414545005");
    }
    void Sizing() { CompareAnswer(); }
};

QTEST_APPLESS_MAIN(SizingTest)
#include "sizing_test.moc"
