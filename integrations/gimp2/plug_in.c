/* What GIMP asks of a plug-in: its procedure, its place in the menus, and how it is run. */
#include <glib/gi18n-lib.h>
#include <libgimp/gimp.h>

#include "dialog.h"
#include "layer_filter.h"
#include "median/library/hymedian.h"

#define PROCEDURE "plug-in-hymedian"

static void query(void) {
    static const GimpParamDef arguments[] = {
        {GIMP_PDB_INT32, "run-mode", "The run mode { RUN-INTERACTIVE (0), RUN-NONINTERACTIVE (1) }"},
        {GIMP_PDB_IMAGE, "image", "Input image"},
        {GIMP_PDB_DRAWABLE, "drawable", "Layer, mask or channel"},
        {GIMP_PDB_INT32, "radius", "How far the filter looks, 1 to 6 pixels"},
    };
    gimp_plugin_domain_register(GETTEXT_PACKAGE, LOCALE_FOLDER);
    /* It is offered for images of all types: a sentence says more than a grey entry. */
    gimp_install_procedure(PROCEDURE, N_("Remove specks and dust, and keep edges, corners and fine lines"),
                           "Replaces every pixel by the hybrid vector median of the pixels around it: "
                           "always one of these, never a mixture. What is not selected stays, and does not "
                           "count.",
                           "hymedian", "hymedian", "2026", N_("_Hybrid Median..."), "*", GIMP_PLUGIN,
                           G_N_ELEMENTS(arguments), 0, arguments, NULL);
    gimp_plugin_menu_register(PROCEDURE, "<Image>/Filters/Enhance");
}

/* Finds out the radius; says why not otherwise. */
static GimpPDBStatusType choose_radius(gint count, const GimpParam *arguments, gint *radius,
                                       const char **failure) {
    *radius = HYMEDIAN_MIN_RADIUS;
    switch ((GimpRunMode)arguments[0].data.d_int32) {
        case GIMP_RUN_INTERACTIVE:
            gimp_get_data(PROCEDURE, radius);
            return ask_for_radius(arguments[2].data.d_drawable, radius) ? GIMP_PDB_SUCCESS : GIMP_PDB_CANCEL;
        case GIMP_RUN_WITH_LAST_VALS:
            gimp_get_data(PROCEDURE, radius);
            return GIMP_PDB_SUCCESS;
        default:
            *radius = count > 3 ? arguments[3].data.d_int32 : 0;
            if (*radius >= HYMEDIAN_MIN_RADIUS && *radius <= HYMEDIAN_MAX_RADIUS) {
                return GIMP_PDB_SUCCESS;
            }
            *failure = _("Hybrid Median: the radius must be from 1 to 6.");
            return GIMP_PDB_CALLING_ERROR;
    }
}

static void run(const gchar *name, gint count, const GimpParam *arguments, gint *results,
                GimpParam **values) {
    static GimpParam answer[2];
    *results = 1;
    *values = answer;
    bindtextdomain(GETTEXT_PACKAGE, LOCALE_FOLDER);
    bind_textdomain_codeset(GETTEXT_PACKAGE, "UTF-8");
    gegl_init(NULL, NULL);
    /* Otherwise GIMP may hand out eight bits of every layer; versions differ in which calls imply it. */
    gimp_plugin_enable_precision();

    const gint32 drawable = arguments[2].data.d_drawable;
    const char *failure = refusal_of(drawable);
    GimpPDBStatusType status = GIMP_PDB_EXECUTION_ERROR;
    gint radius = 0;
    if (failure == NULL) {
        status = choose_radius(count, arguments, &radius, &failure);
    }
    if (status == GIMP_PDB_SUCCESS) {
        failure = filter_drawable(drawable, radius);
        status = failure == NULL ? GIMP_PDB_SUCCESS : GIMP_PDB_EXECUTION_ERROR;
    }
    if (status == GIMP_PDB_SUCCESS && arguments[0].data.d_int32 != GIMP_RUN_NONINTERACTIVE) {
        gimp_set_data(PROCEDURE, &radius, sizeof radius);
        gimp_displays_flush();
    }
    answer[0].type = GIMP_PDB_STATUS;
    answer[0].data.d_status = status;
    if (failure != NULL) {
        *results = 2;
        answer[1].type = GIMP_PDB_STRING;
        answer[1].data.d_string = (gchar *)failure;
    }
}

const GimpPlugInInfo PLUG_IN_INFO = {NULL, NULL, query, run};

MAIN()
