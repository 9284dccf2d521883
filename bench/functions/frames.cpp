// Records, sizes and positions; frames and their corrections.
#include "bayer/mosaic_plain.h"
#include "bicubic/correction/correction.h"
#include "functions/functions.h"
#include "table/float_correction_plain.h"

namespace zerklsc::bench {

void add_records(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    functions.add("lsc2d_calib_param_default", "call", calls, many([=](uint16_t i) {
                      lsc2d_calib_param param;
                      lsc2d_calib_param_default(&param, step, radius, i);
                      return param.grid;
                  }));
    functions.add("lsc2d_info_to_isp_param", "call", calls, many([=](uint16_t) {
                      lsc2d_info_to_isp_param(&in->copied, &in->copied_record);
                      return in->copied_record.grid;
                  }));
    functions.add("isp_param_to_lsc2d_info", "call", calls, many([=](uint16_t) {
                      isp_param_to_lsc2d_info(&in->copied, &in->copied_record);
                      return in->copied.grid;
                  }));
    const struct {
        const char* name;
        decltype(&lsc2d_grid_samples) size_of;
    } sizes[] = {{"lsc2d_grid_samples", lsc2d_grid_samples}, {"lsc2d_table_size", lsc2d_table_size}};
    for (const auto& [name, size_of] : sizes)
        functions.add(name, "call", calls, many([size_of = size_of](uint16_t i) {
                          int32_t w, h;
                          size_of(plane_w + i, plane_h, step, step, &w, &h);
                          return w + h;
                      }));
    functions.add("get_boundary_pos(int, int, int)", "call", calls,
                  many([](uint16_t i) { return get_boundary_pos(500, i - 100, ZERKLSC_BOUNDARY_MIRROR); }));
    functions.add("pixel_position_mapping", "call", calls,
                  many([](uint16_t i) { return pixel_position_mapping(7, i, plane_w, plane_w - 9); }));
    functions.add("get_cubic_coef", "call", calls,
                  many([](uint16_t i) { return get_cubic_coef(static_cast<float>(i) / 500.0f) + 1.0f; }));
    functions.add("zerklsc_version", "call", calls, many([](uint16_t) { return zerklsc_version(); }));
    functions.add("zerklsc_status_text", "call", calls,
                  many([](uint16_t) { return zerklsc_status_text(ZERKLSC_BAD_STEP)[0]; }));
    functions.add("zerklsc_stream_size", "call", calls,
                  many([](uint16_t i) { return zerklsc_stream_size(i, table_h, 0); }));
    functions.add("zerklsc_check_correction", "call", calls,
                  many([=](uint16_t) { return zerklsc_check_correction(&in->tables.info); }));
    functions.add("zerklsc_check_calibration", "call", calls,
                  many([=](uint16_t) { return zerklsc_check_calibration(&in->tables.info); }));
    functions.add("zerklsc_check_stream", "call", calls,
                  many([=](uint16_t) { return zerklsc_check_stream(&in->otp); }));
}

void add_frames(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    functions.add(
        "bayer_split_channel", "pixel", pixels,
        [=] { bayer_split_channel(in->frame.data(), in->planes, width, height); },
        [=] { plain::split_channel(in->frame.data(), in->planes, width, height); });
    functions.add(
        "bayer_merge_channel", "pixel", pixels,
        [=] { done(bayer_merge_channel(in->out.data(), in->planes, width, height) - plane_h); },
        [=] { plain::merge_channel(in->out.data(), in->planes, width, height); });
    functions.add(
        "isp_blc_process", "pixel", pixels, [=] { isp_blc_process(in->out.data(), &in->black); },
        [=] { plain::subtract_black(in->out.data(), in->black); });
    functions.add("bayer_rotation(unsigned short*, int, int)", "pixel", turned_w * turned_h,
                  [=] { done(bayer_rotation(in->out.data(), turned_w, turned_h) - turned_h); });
}

void add_corrections(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    const auto correct = [=](isp_param_tag& record, auto correction_of) {
        return [=, &record] { plain::correct(correction_of(in->frame.data(), in->out.data(), record)); };
    };
    const Work plain_tvessa2 = correct(in->record, tvessa2_correction);
    const Work plain_vessal2 = correct(in->vessal2_record, vessal2_correction);
    functions.add(
        "bicubic_lnc_correction_tvessa2", "pixel", pixels,
        [=] { done(bicubic_lnc_correction_tvessa2(in->frame.data(), in->out.data(), &in->record)); },
        plain_tvessa2);
    functions.add(
        "bicubic_lnc_correction_vessaL2", "pixel", pixels,
        [=] { done(bicubic_lnc_correction_vessaL2(in->frame.data(), in->out.data(), &in->vessal2_record)); },
        plain_vessal2);
    functions.add(
        "bicubic_lnc_correction_vessaL2_core", "pixel", pixels,
        [=] {
            done(bicubic_lnc_correction_vessaL2_core(in->frame.data(), in->out.data(), &in->vessal2_record));
        },
        plain_vessal2);
    functions.add(
        "lsc2d_correction_wrapper", "pixel", pixels,
        [=] { done(lsc2d_correction_wrapper(in->frame.data(), in->out.data(), &in->tables.info)); },
        plain_tvessa2);
    functions.add(
        "zerklsc_correct", "pixel", pixels,
        [=] {
            done(zerklsc_correct(&in->tables.info, in->frame.data(), 2 * width, in->out.data(), 2 * width, 0,
                                 height));
        },
        plain_tvessa2);
    const uint16_t* const gains = in->tables.info.lsc_table[0];
    functions.add(
        "lsc2d_bicubic_correction", "sample", samples,
        [=] {
            lsc2d_bicubic_correction(in->planes[0], in->out.data(), plane_w, plane_h, gains, step, step,
                                     table_w);
        },
        [=] {
            plain::bicubic_correction(
                {in->planes[0], in->out.data(), plane_w, plane_h, gains, step, step, table_w});
        });
}

} // namespace zerklsc::bench
