// Four tables and their stream between guard pages, with the record that names them.
#pragma once

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace zerklsc::testing {

struct OtpSet {
    Guarded<uint16_t> gains; // table by table
    Guarded<uint8_t> stream; // exactly the room that it needs
    lsc_otp_info info;

    // Of width x height inner nodes.
    OtpSet(int width, int height, int pattern, int mode, Against side = Against::back)
        : gains(static_cast<size_t>(4 * (width + 2) * (height + 2)), side),
          stream(static_cast<size_t>(mode == 0   ? 3 * width * height
                                     : mode == 1 ? width * height / 4 * 7
                                                 : 0),
                 side),
          info{static_cast<uint8_t>(pattern), width + 2, height + 2, {}, stream.data(),
               static_cast<uint8_t>(mode)} {
        for (int k = 0; k < 4; ++k)
            info.lsc_table[k] = gains.data() + k * (width + 2) * (height + 2);
    }

    // Of inner node n of table k.
    uint16_t& gain(int k, int n) const {
        const int w = info.grid_width;
        return info.lsc_table[k][(n / (w - 2) + 1) * w + n % (w - 2) + 1];
    }
    bool intact() const { return gains.intact() && stream.intact(); }
};

// Random sizes, patterns and modes, shorter and longer than a vector, at both ends of the guarded pages.
inline OtpSet random_set(int i) {
    return OtpSet(1 + i % 40, 1 + i % 11, i % 4, i / 4 % 2, i % 3 ? Against::back : Against::front);
}

} // namespace zerklsc::testing
