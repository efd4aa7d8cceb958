#include "dialog.h"

#include <glib/gi18n-lib.h>
#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "layer_filter.h"
#include "median/library/hymedian.h"

typedef struct {
    gint32 drawable;
    GtkObject *radius;
} Dialog;

static gint radius_of(const Dialog *dialog) {
    return (gint)gtk_adjustment_get_value(GTK_ADJUSTMENT(dialog->radius));
}

static void draw_preview(GimpPreview *preview, const Dialog *dialog) {
    GeglRectangle shown;
    gimp_preview_get_position(preview, &shown.x, &shown.y);
    gimp_preview_get_size(preview, &shown.width, &shown.height);
    guchar *pixels = filter_for_preview(dialog->drawable, radius_of(dialog), &shown);
    if (pixels != NULL) {
        const gint channels = (gimp_drawable_is_rgb(dialog->drawable) ? 3 : 1) +
                              (gimp_drawable_has_alpha(dialog->drawable) ? 1 : 0);
        gimp_preview_draw_buffer(preview, pixels, shown.width * channels);
        g_free(pixels);
    }
}

gboolean ask_for_radius(gint32 drawable, gint *radius) {
    gimp_ui_init("hymedian", FALSE);
    Dialog dialog = {drawable, NULL};
    GtkWidget *window = gimp_dialog_new(_("Hybrid Median"), "hymedian", NULL, 0, NULL, NULL, _("_Cancel"),
                                        GTK_RESPONSE_CANCEL, _("_OK"), GTK_RESPONSE_OK, NULL);
    gtk_dialog_set_alternative_button_order(GTK_DIALOG(window), GTK_RESPONSE_OK, GTK_RESPONSE_CANCEL, -1);
    gimp_window_set_transient(GTK_WINDOW(window));

    GtkWidget *box = gtk_vbox_new(FALSE, 12);
    gtk_container_set_border_width(GTK_CONTAINER(box), 12);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(window))), box, TRUE, TRUE, 0);
    GtkWidget *preview = gimp_drawable_preview_new_from_drawable_id(drawable);
    gtk_box_pack_start(GTK_BOX(box), preview, TRUE, TRUE, 0);
    GtkWidget *table = gtk_table_new(1, 3, FALSE);
    gtk_table_set_col_spacings(GTK_TABLE(table), 6);
    gtk_box_pack_start(GTK_BOX(box), table, FALSE, FALSE, 0);
    dialog.radius = gimp_scale_entry_new(GTK_TABLE(table), 0, 0, _("_Radius:"), 150, 4, *radius,
                                         HYMEDIAN_MIN_RADIUS, HYMEDIAN_MAX_RADIUS, 1, 1, 0, TRUE, 0, 0,
                                         _("How far the filter looks, in pixels; begin with 1"), NULL);
    g_signal_connect(preview, "invalidated", G_CALLBACK(draw_preview), &dialog);
    g_signal_connect_swapped(dialog.radius, "value-changed", G_CALLBACK(gimp_preview_invalidate), preview);

    gtk_widget_show_all(window);
    const gboolean agreed = gimp_dialog_run(GIMP_DIALOG(window)) == GTK_RESPONSE_OK;
    if (agreed) {
        *radius = radius_of(&dialog);
    }
    gtk_widget_destroy(window);
    return agreed;
}
