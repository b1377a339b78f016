#pragma once

#include <QString>

class ISettings;
class IUploader;
class IUserInterface;

namespace Host {

/// Uploads a file, and asks for what the uploader finds missing: a folder, a pin.
/// Returns when the upload has ended, however it did, and the user knows; where it
/// came to an address, that is offered to be opened.
///
/// The folder that was used last is proposed. Pins are never stored.
/// \param id       tells the settings of this uploader from those of others
/// \param settings may be null
/// \throws what the uploader throws; then it is to be deleted
void Publish(IUploader& uploader, const QString& fileName, const QString& id, ISettings* pSettings, IUserInterface& ui);

} // namespace Host
