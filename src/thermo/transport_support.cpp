#include "thermo/transport_support.hpp"

#include "thermo/steam_if97.hpp"

namespace velm::transport_support {

double water_property(RunContext& ctx, double T, double P, int phase, double (*prop)(double, double),
                      double fallback, const char* missing) {
    const double v = Steam97(ctx, T, P / 1000.0, phase, kSteamVolume);
    if (v != 0.0) return prop(T, 1.0 / v);
    ctx.log_error(missing);
    return fallback;
}

}  // namespace velm::transport_support
