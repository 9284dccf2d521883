// Other people's libraries doing the same work. Each function is empty in builds without its library.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zerklsc::bench {

struct Peer {
    std::string name;
    std::string work;
    std::function<void()> theirs;
    std::function<void()> ours;
};

std::vector<Peer> opencv_peers();
std::vector<Peer> lensfun_peers();
std::vector<Peer> eigen_peers();
std::vector<Peer> openblas_peers();

} // namespace zerklsc::bench
