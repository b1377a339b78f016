#pragma once

#include "benchmarks/Measure.h"

#include <QString>

class QSaveFile;

namespace Bench {

/// The figures of another run.
/// \throws std::runtime_error the text names the file and what is wrong with it
Figures ReadFigures(const QString& fileName);

/// Opens `file` for WriteFigures(), before a long run is made for it.
/// \throws std::runtime_error as above
void OpenForFigures(QSaveFile& file);

/// Only now the file is replaced.
/// \throws std::runtime_error as above; the file is what it was
void WriteFigures(QSaveFile& file, const Figures& figures);

} // namespace Bench
