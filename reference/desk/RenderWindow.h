#pragma once

#include <QImage>

class IApplicationContext;
class IRender;
class IScene;
class IUserInterface;
class QWidget;

namespace Host {

/// Makes a picture of the scene, which may be stopped, and shows it in a window
/// of its own, in which it can be saved.
/// \param size as AdjustResolution() takes it: missing sides follow the frame of
///             the camera
/// \return the picture; null where the program ended meanwhile
/// \throws LoadingException the renderer failed, with what it said last
QImage ShowRendering(const IScene& scene, IRender& renderer, const QSize& size, const IApplicationContext& application,
                     IUserInterface& ui);

} // namespace Host
