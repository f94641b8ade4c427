// Phase properties of a flashed stream from the transport-property routines:
// the one place where the flash calls them.
#include <cmath>

#include "model/fault.hpp"
#include "thermo/enthalpy.hpp"
#include "thermo/flash.hpp"

#include "thermo/transport.hpp"

namespace velm {

void transport_properties(RunContext& ctx, const FlashSetup& setup, FlashStream& s) {
    const CompSpan comps(setup.comps);
    const std::vector<CompProp>& records = setup.comps;
    const Fractions x(s.X);
    const Fractions y(s.Y);
    s.LIQDEN = s.LIQVISC = s.LIQSUR = s.LIQCON = s.LIQMW = 0.0;
    s.VAPMW = s.VAPZ = s.VAPDEN = s.VAPVISC = s.VAPK = s.VAPCON = 0.0;
    if (s.LF > 0.0) {
        s.LIQDEN = LiqDensity(ctx, s.T, s.P, x, records, setup.kij);
        s.LIQVISC = LiqViscosity(ctx, s.T, s.P, x, records, setup.PATM);
        s.LIQSUR = SurfTension(ctx, s.T, s.P, x, records);
        s.LIQCON = LiqConductivity(ctx, s.T, s.P, x, records);
        s.LIQMW = MixMW(x, comps);
    }
    if (s.LF < 1.0) {
        s.VAPMW = MixMW(y, comps);
        s.VAPZ = VapZ(ctx, s.T, s.P, y, records, setup.kij);
        // Ideal gas law with the real-gas Z: P kPa, MW kg/kmol, T K.
        s.VAPDEN = std::abs(checked_div(checked_div(s.P * s.VAPMW / kGasConstant, s.T), s.VAPZ));
        s.VAPVISC = VapViscosity(ctx, s.T, s.P, y, s.VAPDEN, records);
        s.VAPCON = VapConductivity(ctx, s.T, s.P, y, records);
        s.VAPK = CpCv(ctx, setup.MFLASHH, s.T, s.P, y, comps, setup.kij);
    }
}

}  // namespace velm
