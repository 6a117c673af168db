#pragma once

/// The system's loader of code at run time. Loading and freeing run the initialisers and finalisers
/// of images on the calling thread, so no lock may be held around them. Any thread may call.
namespace Korvex::ImageLoader {

/// Loads an image privately: its symbols serve nobody else, and all that it needs is bound at once.
///
/// \param path A path, relative ones from the current directory; a bare name that is no file there
/// is looked for where the system keeps libraries.
/// \return The image, which the caller gives back with \ref close; null when it cannot be loaded.
[[nodiscard]] void* open(const char* path);

/// Whether an image is marked never to be unloaded.
[[nodiscard]] bool isPermanent(void* image);

/// The address of a C symbol of an image, or of a library that the image needs; null for none.
[[nodiscard]] void* symbol(void* image, const char* name);

/// Gives an image back; it is unloaded when nobody else holds it. \return False when it stays
/// loaded because it is permanent, or is no image.
bool close(void* image);

/// Gives back one reference to the image of a file that has more than one. Does nothing when the
/// file is not loaded.
void dropExtraReference(const char* path);

} // namespace Korvex::ImageLoader
