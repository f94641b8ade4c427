// Phase properties of a flashed stream from the transport-property routines:
// the one place where the flash calls them.
#include <cmath>

#include "model/fault.hpp"
#include "thermo/enthalpy.hpp"
#include "thermo/flash.hpp"

#if __has_include("thermo/transport.hpp")
#include "thermo/transport.hpp"
#define VELM_HAS_TRANSPORT 1
#else
#define VELM_HAS_TRANSPORT 0
#endif

namespace velm {

void transport_properties(RunContext& ctx, const FlashSetup& setup, FlashStream& s) {
    const CompSpan comps(setup.comps);
    const Fractions x(s.X);
    const Fractions y(s.Y);
    s.LIQDEN = s.LIQVISC = s.LIQSUR = s.LIQCON = s.LIQMW = 0.0;
    s.VAPMW = s.VAPZ = s.VAPDEN = s.VAPVISC = s.VAPK = s.VAPCON = 0.0;
    if (s.LF > 0.0) {
#if VELM_HAS_TRANSPORT
        s.LIQDEN = LiqDensity(ctx, s.T, s.P, x, comps, setup.kij);
        s.LIQVISC = LiqViscosity(ctx, s.T, s.P, x, comps);
        s.LIQSUR = SurfaceTension(ctx, s.T, s.P, x, comps);
        s.LIQCON = LiqConductivity(ctx, s.T, s.P, x, comps);
#endif
        s.LIQMW = MixMW(x, comps);
    }
    if (s.LF < 1.0) {
        s.VAPMW = MixMW(y, comps);
#if VELM_HAS_TRANSPORT
        s.VAPZ = VapZ(ctx, s.T, s.P, y, comps, setup.kij);
        // Ideal gas law with the real-gas Z: P kPa, MW kg/kmol, T K.
        s.VAPDEN = std::abs(checked_div(checked_div(s.P * s.VAPMW / kGasConstant, s.T), s.VAPZ));
        s.VAPVISC = VapViscosity(ctx, s.T, s.P, y, s.VAPDEN, comps);
        s.VAPCON = VapConductivity(ctx, s.T, s.P, y, comps);
#endif
        s.VAPK = CpCv(ctx, setup.MFLASHH, s.T, s.P, y, comps, setup.kij);
    }
}

}  // namespace velm
