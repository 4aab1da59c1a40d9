// How the window toolkit draws glyphs.
#pragma once

namespace ovrin {

// The toolkit has outlines of the PostScript kind, which Chinese faces have, drawn bolder than the others, and blends
// them so that this hardly shows in dark text on light ground. In light text on dark ground they look bold next to
// Latin letters. From now on they are drawn as designed. Main thread, after the application object and before any text;
// nothing happens where the toolkit does not draw by FreeType.
void drawOutlinesAsDesigned();

}  // namespace ovrin
