#pragma once
// What every fuzz target shares: one application folder for the process, the input written to a file
// in it as the readers take their files, and the Qt objects the readers need.

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace Fuzz {

// The application folder of this process, with its working folders; made at the first call.
QString AppPath();
// Writes the input to `name` in the application folder and returns the path.
QString WriteInput(const QString &name, const uint8_t *data, size_t size);
// The same text with "/" and "\" made "_": for readers that write where their input says, so that a
// fuzzer cannot reach files outside the application folder.
QByteArray Confined(const uint8_t *data, size_t size);
// The application object on the offscreen platform; the engine draws pages with QPainter.
void StartApplication();

} // namespace Fuzz
