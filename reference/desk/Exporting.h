#pragma once

class IScene;
class IUserInterface;

namespace Host {

class PluginHost;

/// Asks for a file, in one of the formats of all exporters of models, and writes
/// what is visible of the scene into it. What a format can't hold is told.
/// \throws ExporterException nothing was written
void ExportModel(const IScene& scene, const PluginHost& plugins, IUserInterface& ui);

} // namespace Host
