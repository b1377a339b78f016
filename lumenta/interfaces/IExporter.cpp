#include "lumenta/interfaces/IExporter.h"

IExporter::~IExporter() = default;
