#include "fuzz/Input.h"

#include <QDirIterator>
#include <QFile>

// Runs inputs that are kept through a fuzzer, without the library that invents
// new ones, and with any compiler.

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (int i = 1; i < argc; ++i)
        for (QDirIterator files(QFile::decodeName(argv[i]), QDir::Files); files.hasNext(); ++count) {
            QFile file(files.next());
            Fuzz::Require(file.open(QIODevice::ReadOnly), "an input can be read");
            const QByteArray bytes = file.readAll();
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
        }
    Fuzz::Require(count > 0, "there are inputs");
}
