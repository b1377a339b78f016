#include "lumenta/interfaces/ISnapshotManager.h"

ISnapshotManager::~ISnapshotManager() = default;
