// The library's call for NumPy arrays whose kind and shape have been checked already.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "median/library/hymedian.h"

namespace py = pybind11;

namespace {

// Rows, columns and, with three axes, components.
hymedian_image ImageOf(const py::array &array) {
    const bool gray = array.ndim() == 2;
    return {const_cast<void *>(array.data()),
            array.shape(1),
            array.shape(0),
            gray ? 1 : static_cast<int32_t>(array.shape(2)),
            static_cast<int32_t>(array.itemsize()),
            array.strides(0),
            array.strides(1),
            gray ? 0 : array.strides(2)};
}

// Ctrl-C cancels.
int CheckSignals(void *, double) {
    const py::gil_scoped_acquire held;
    return PyErr_CheckSignals();
}

void Filter(const py::array &input, py::array output, int radius, int workers, float least, float greatest,
            bool partial) {
    output.mutable_data();  // raises what a read-only array raises
    const hymedian_image from = ImageOf(input);
    const hymedian_image to = ImageOf(output);
    hymedian_options options = {};
    options.size = sizeof options;
    options.radius = radius;
    options.threads = workers;
    options.least = least;
    options.greatest = greatest;
    options.progress = CheckSignals;
    options.partial = partial;
    int status;
    {
        const py::gil_scoped_release released;
        status = hymedian_filter(&from, &to, &options);
    }
    switch (status) {
        case HYMEDIAN_OK:
            return;
        case HYMEDIAN_CANCELLED:
            throw py::error_already_set();
        case HYMEDIAN_NO_MEMORY:
            throw std::bad_alloc();
        default:
            throw py::value_error(hymedian_status_text(status));
    }
}

}  // namespace

PYBIND11_MODULE(_native, module) {
    module.def("filter", Filter);
    module.attr("version") = hymedian_version();
}
