// What a program of Qt Core takes that does nothing.

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
