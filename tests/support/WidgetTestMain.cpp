#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
    // A test started by hand looks for servers no further than one started by ctest.
    if (!qEnvironmentVariableIsSet("OSTRA_DISCOVERY"))
        qputenv("OSTRA_DISCOVERY", "127.0.0.1:9");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    ::testing::InitGoogleMock(&argc, argv);
    // Tests are listed without the environment, and so without the platform, that each of them gets.
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
