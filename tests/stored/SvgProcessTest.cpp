// The model works in a process without a Qt application, as this one, and in one with a user interface.

#include "Stored/V21/SvgImage.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>

#include <cstdlib>

using namespace Stored::V21;

namespace {

const QString text =
    "<svg viewBox='0 0 9 9' fill='red'><style>text{font-family:Serif}</style><font><font-face "
    "font-family='f'/><glyph unicode='a' d='M0 0L9 9'/></font><text font-family='Sans' font-size='3'"
    ">word<tspan>word</tspan></text><textArea width='9'>word</textArea><image width='1' height='1' "
    "xlink:href='data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk"
    "+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg=='/><rect><animateTransform attributeName='transform' "
    "type='rotate' from='0' to='9' dur='3s'/><animate attributeName='x' to='1' dur='1s'/></rect></svg>";

bool works() {
    SvgImage image(text);
    image.setFillColor(Qt::blue);
    return image.document()->durationMs() == 3000 && image.document()->animated() &&
           image.toString().startsWith("<svg fill=\"#0000ff\" viewBox");
}

TEST(SvgProcess, NeedsNoApplication) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_TRUE(works());
}

// Each kind of application runs in a child process, which exits without destroying it.

template <class Application>
[[noreturn]] void workBeside() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    const Application application(argc, argv);
    std::_Exit(works() ? 0 : 1);
}

TEST(SvgProcess, WorksBesideACoreApplication) {
    EXPECT_EXIT(workBeside<QCoreApplication>(), testing::ExitedWithCode(0), "");
}

TEST(SvgProcess, WorksBesideAGuiApplication) {
    EXPECT_EXIT(workBeside<QGuiApplication>(), testing::ExitedWithCode(0), "");
}

} // namespace
