#pragma once

#include "reference/host/Model.h"
#include "reference/host/Progress.h"
#include "reference/tools/CommandLine.h"

#include <QImage>
#include <QMap>
#include <QStringList>

#include <optional>
#include <vector>

namespace Host {

/// How MODEL is explained in every manual.
QString ModelSourceText();

/// What KeepInputs() says of files that pictures show.
inline const QString kDrawnFrom = QStringLiteral("what the picture is drawn from");

/// \throws Failure the source begins with a colon and names nothing that is built in
void RequireBuiltIn(const QString& source);

/// A model from a file, or the built-in sample figure for ":figure". The
/// model's `fileName` is `source`.
/// \throws Failure the subject is `source`
Model OpenModel(const QString& source, const Progress& progress);

/// The index of the animation that a person means: the first of this name, or
/// the one of this number, counted from 0.
/// \param names  of all there are
/// \param source of the model, for the error
/// \throws Failure there is no animation, or none of this name or number
int FindAnimation(const QStringList& names, const QString& source, const QString& nameOrNumber);

/// The same among the animations of a model.
int FindAnimation(const Model& model, const QString& nameOrNumber);

/// The animation that --animation names, or else the first one where `plays`.
/// \throws Failure as FindAnimation()
std::optional<int> FindShownAnimation(const Model& model, const Arguments& arguments, bool plays);

/// Hides meshes and materials by name.
/// \throws Failure a name that matches nothing, with those there are; or
///                 nothing is left to be seen
void Hide(Model& model, const QStringList& meshes, const QStringList& materials);

/// The colour textures of what is visible, by the name their material uses. A
/// file is looked for as named, from the model's folder; then by its bare name
/// in that folder; then among the embedded ones.
/// \param missing receives a text for each that could not be had
QMap<QString, QImage> LoadTextures(const Model& model, QStringList& missing);

/// The files of the model and of its textures, hidden ones too. Some may not exist.
QStringList InputFiles(const Model& model);

/// Every geometry of the scene, parents before children.
std::vector<const SkinAnimation::Geometry*> GeometriesOf(const SkinAnimation::Scene& scene);

} // namespace Host
