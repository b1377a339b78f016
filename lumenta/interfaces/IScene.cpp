#include "lumenta/interfaces/IScene.h"

IScene::~IScene() = default;
