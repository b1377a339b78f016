#include "lumenta/platform/IFileDialog.h"

IFileDialog::~IFileDialog() = default;
