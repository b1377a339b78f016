#pragma once

#include <QImage>
#include <QStringList>

class IRender;
class IScene;
struct sRenderSettings;

namespace Host {

/// Draws the scene and waits until that is done; meanwhile events are handled,
/// but not what a person does. Needs a QCoreApplication for renderers that
/// take their time.
/// \param leftOut receives what the renderer says
/// \throws SavingException the picture failed, or was stopped
QImage DrawPicture(IRender& render, const IScene& scene, const sRenderSettings& settings, QStringList& leftOut);

/// Finds out, before long work, that a picture can't be written there.
/// \throws SavingException the name does not end in .png
/// \throws FileException   something is in the way of ReplaceFile()
void CheckPictureFile(const QString& strFileName);

/// Writes a PNG file by ReplaceFile().
/// \throws FileException
void WritePictureFile(const QString& strFileName, const QImage& image);

} // namespace Host
