// Levels of a plane, and calibration.
#include <cstdlib>

#include "calibration/beta_plain.h"
#include "calibration/inversion/matrix_inv_plain.h"
#include "calibration/orvel_plain.h"
#include "functions/functions.h"
#include "sampling/measurement.h"
#include "sampling/plain.h"

namespace zerklsc::bench {
namespace {

void measure_gains_plainly(Inputs& in, const imfilter_t& filter) {
    plain::sample_grid(in.planes[0], in.inner.data(), plane_w, plane_h, step, step, grid_w, grid_h, filter);
    const uint16_t reference = plain::brightest_level(in.planes[0], plane_w, plane_h, filter);
    gains_from_samples(in.inner.data(), in.inner.data(), grid_w * grid_h, reference);
}

void calibrate_plainly(Inputs& in) {
    plain::calibrate_orvel(in.frame.data(), width, height, in.work.info.lsc_table, table_w, table_h,
                           in.calib);
    lsc2d_table_postproc(in.work.info.lsc_table, plane_w, plane_h, table_w, table_h, &in.calib);
}

template <class T>
void copy_and_invert(const std::vector<T>& from, std::vector<T>& to, int (*invert)(T*, int)) {
    to = from;
    done(invert(to.data(), inverted));
}

} // namespace

void add_levels(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    const auto count = static_cast<int32_t>(in->points.size());
    functions.add("get_filter_mask", "tap", static_cast<double>(in->mask.size()), [=] {
        int32_t sum;
        done(get_filter_mask(&in->mask[in->mask.size() / 2], &sum, &in->disc));
    });
    functions.add(
        "img_filter", "sample", side * side,
        [=] { done(img_filter(&in->frame[radius * (side + 1)], in->out.data(), side, side, &in->disc)); },
        [=] { plain::filter_plane(&in->frame[radius * (side + 1)], in->out.data(), side, side, in->disc); });
    functions.add(
        "img_sample_grid", "node", n,
        [=] {
            done(img_sample_grid(in->planes[0], in->inner.data(), plane_w, plane_h, step, step, grid_w,
                                 grid_h, &in->box));
        },
        [=] {
            plain::sample_grid(in->planes[0], in->inner.data(), plane_w, plane_h, step, step, grid_w, grid_h,
                               in->box);
        });
    const Work sample_plainly = [=] {
        plain::sample_points(in->planes[0], in->points.data(), count, plane_w, plane_h, in->box);
    };
    functions.add(
        "img_sample", "point", count,
        [=] { done(img_sample(in->planes[0], in->points.data(), count, plane_w, plane_h, &in->box)); },
        sample_plainly);
    functions.add(
        "find_peak_intensity(unsigned short*, pix_point*, int, int, int, imfilter_t*)", "point", count,
        [=] { find_peak_intensity(in->planes[0], in->points.data(), count, plane_w, plane_h, &in->box); },
        sample_plainly);
    functions.add("get_pixel_maximum", "point", count,
                  [=] { sink = static_cast<uint64_t>(get_pixel_maximum(in->points.data(), count)); });
    functions.add("init_center_points", "point", count, [] {
        pix_point* points;
        int32_t made;
        done(init_center_points(plane_w, plane_h, &points, &made));
        std::free(points);
    });
    functions.add("release_center_points", "call", 1,
                  [] { release_center_points(static_cast<pix_point*>(std::malloc(sizeof(pix_point)))); });
    functions.add("meshgrid", "point", mesh_w * mesh_h,
                  [=] { meshgrid(in->mesh.data(), in->lines.data(), in->lines.data(), mesh_w, mesh_h); });
    functions.add(
        "calc_otp_table", "node", n,
        [=] {
            done(calc_otp_table(in->planes[0], in->inner.data(), plane_w, plane_h, step, step, grid_w, grid_h,
                                radius));
        },
        [=] { measure_gains_plainly(*in, in->box); });
    functions.add(
        "calc_correction_table", "node", n,
        [=] {
            done(calc_correction_table(in->planes[0], in->inner.data(), plane_w, plane_h, step, step, grid_w,
                                       grid_h, &in->disc));
        },
        [=] { measure_gains_plainly(*in, in->disc); });
}

void add_calibration(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    uint32_t* const calib_words = reinterpret_cast<uint32_t*>(&in->calib);
    functions.add(
        "lsc2d_calibration_wrapper", "pixel", pixels,
        [=] { done(lsc2d_calibration_wrapper(in->frame.data(), &in->work.info)); },
        [=] { calibrate_plainly(*in); });
    functions.add(
        "zerklsc_calibrate", "pixel", pixels,
        [=] { done(zerklsc_calibrate(in->frame.data(), &in->work.info, nullptr)); },
        [=] { calibrate_plainly(*in); });
    functions.add(
        "lsc2d_calibration_orvel", "pixel", pixels,
        [=] {
            done(lsc2d_calibration_orvel(in->frame.data(), width, height, in->work.info.lsc_table, table_w,
                                         table_h, &in->calib));
        },
        [=] { calibrate_plainly(*in); });
    int32_t fit_w, fit_h;
    lsc2d_table_size(plane_w, plane_h, fit_step, fit_step, &fit_w, &fit_h);
    functions.add(
        "lsc2d_calibration_beta", "pixel", pixels,
        [=] {
            done(lsc2d_calibration_beta(in->frame.data(), width, height, in->work.info.lsc_table, fit_w,
                                        fit_h, &in->fit));
        },
        [=] { plain::calibrate_beta(in->frame, width, height, fit_w, fit_h, in->fit); });
    functions.add("bicubic_lnc_param_gen_orvel_otp", "pixel", pixels,
                  [=] { done(bicubic_lnc_param_gen_orvel_otp(in->frame.data(), &in->work_record)); });
    functions.add("bicubic_lnc_param_gen_halvane", "pixel", pixels,
                  [=] { done(bicubic_lnc_param_gen_halvane(in->frame.data(), &in->work_record)); });
    functions.add("zerklsc_generate_orvel_otp", "pixel", pixels,
                  [=] { done(zerklsc_generate_orvel_otp(in->frame.data(), &in->work_record, nullptr)); });
    functions.add("zerklsc_generate_halvane", "pixel", pixels,
                  [=] { done(zerklsc_generate_halvane(in->frame.data(), &in->work_record, nullptr)); });
    const struct {
        const char* name;
        decltype(&lsc2d_calibration_orvel_otp) front_end;
    } front_ends[] = {{"lsc2d_calibration_orvel_otp", lsc2d_calibration_orvel_otp},
                      {"lsc2d_calibration_halvane", lsc2d_calibration_halvane}};
    for (const auto& [name, front_end] : front_ends)
        functions.add(name, "pixel", pixels, [=, front_end = front_end] {
            done(front_end(in->frame.data(), width, height, in->work.info.lsc_table, 0, 0, 0, calib_words));
        });
    functions.add("lsc2d_otp_table", "pixel", pixels, [=] {
        done(lsc2d_otp_table(in->frame.data(), width, height, in->lists, grid_w, grid_h, in->words.data()));
    });
    functions.add(
        "int matrix_inv<float>(float*, int)", "element", inverted * inverted,
        [=] { copy_and_invert(in->float_matrix, in->float_inverse, matrix_inv<float>); },
        [=] { copy_and_invert(in->float_matrix, in->float_inverse, plain::matrix_inv<float>); });
    functions.add(
        "int matrix_inv<double>(double*, int)", "element", inverted * inverted,
        [=] { copy_and_invert(in->matrix, in->inverse, matrix_inv<double>); },
        [=] { copy_and_invert(in->matrix, in->inverse, plain::matrix_inv<double>); });
}

} // namespace zerklsc::bench
