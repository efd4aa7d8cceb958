/* The dialog with GIMP's own preview. */
#ifndef HYMEDIAN_DIALOG_H
#define HYMEDIAN_DIALOG_H

#include <glib.h>

/* Returns whether the user agreed; the radius is what was chosen, or as before. */
gboolean ask_for_radius(gint32 drawable, gint *radius);

#endif
