#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
    // A test started by hand searches for servers only where one started by ctest does.
    if (!qEnvironmentVariableIsSet("OSTRA_DISCOVERY"))
        qputenv("OSTRA_DISCOVERY", "127.0.0.1:9");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    ::testing::InitGoogleMock(&argc, argv);
    // ctest lists the tests without the environment, and so without the platform, that it runs them with.
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
