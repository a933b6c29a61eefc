// The scaling of a picture to a size that the contact sheet shows.
#pragma once

#include "canvas.h"
#include "jpeg_header.h"

#include <windows.h>

#include <wincodec.h>

/// The largest size that fits into the space and is not larger than the picture.
PictureSize Fit(PictureSize picture, PictureSize space);

/// A small picture that serves in place of a whole one: it has the wanted size at least, and the shape
/// of the whole.
bool ServesFor(PictureSize small, PictureSize whole, PictureSize wanted);

/// False if the source cannot be decoded. `pixels` is unchanged then.
bool Scale(IWICImagingFactory& factory, IWICBitmapSource& source, PictureSize wanted, Pixels& pixels);
