#include "lumenta/interfaces/IMesh.h"

IMesh::~IMesh() = default;
