// numbers_from
#include "io/number_text.h"

#include <charconv>

namespace zerklsc::tool {

template <class T>
std::optional<std::vector<T>> numbers_from(std::string_view text, T lowest, T highest) {
    std::vector<T> numbers;
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    for (;; ++at) {
        T value{};
        const auto [next, error] = std::from_chars(at, end, value);
        if (error != std::errc{} || !(value >= lowest && value <= highest))
            return std::nullopt;
        numbers.push_back(value);
        at = next;
        if (at == end)
            return numbers;
        if (*at != ',')
            return std::nullopt;
    }
}

template std::optional<std::vector<int>> numbers_from(std::string_view, int, int);
template std::optional<std::vector<double>> numbers_from(std::string_view, double, double);

} // namespace zerklsc::tool
