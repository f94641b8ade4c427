// The five flash algorithms of the own engine. FlashTP is the core:
// successive substitution on K-values around a Rachford-Rice solve (Newton's
// method safeguarded by bisection). FlashPF, FlashTF, FlashPH and FlashPS are
// one-dimensional searches around FlashTP, each driven by ReguliFalsi.
//
// A TP flash of a single phase leaves in Resid its signed distance from the
// phase boundary: sum(z K) - 1 (negative) for a subcooled liquid, 1 - sum(z/K)
// (zero or positive) for a superheated vapour, so that VF + Resid runs
// smoothly through the boundaries as a stream heats up; the PF and TF
// searches drive that function to their target.
//
// All work on the stream in place, in its units (K, kPa absolute, kJ/kg).
#pragma once

#include "thermo/enthalpy.hpp"
#include "thermo/flash.hpp"

namespace velm {

// Phase count of the last K-value evaluation (1 or 2); 0 after a trapped
// fault ("Error! TP Flash error = ..."). An unconverged flash after 1000
// rounds is logged but still returns its phase count.
int FlashTP(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// Temperature at the given P and liquid weight fraction LF, searched in
// 50..1000 K from s.T (300 K when MFLASHR is off). LF = 1 gives the bubble
// point, LF = 0 the dew point. On failure the stream is restored and 0 returned.
int FlashPF(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// Pressure at the given T and LF, searched in 0.5..50000 kPa from s.P (200 kPa
// when MFLASHR is off or P is below 0.01). On failure the stream is restored.
int FlashTF(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// The temperature range of the PH and PS searches, K. A search that leaves it
// logs so and ends there, with its last temperature outside the range.
inline constexpr double kPropertySearchTmin = 50.0;
inline constexpr double kPropertySearchTmax = 5000.0;

// Temperature and split at the given P and enthalpy H (kJ/kg), searched in
// 50..5000 K; H is left exactly as given. A pure component between its liquid
// and vapour enthalpy settles at its boiling point with LF by the lever rule.
int FlashPH(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// As FlashPH for the entropy S (kJ/kg/K).
int FlashPS(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// Work space of one flash call, on the caller's stack: the SRK state of the
// current T, P and the arrays of the iterations. Nothing is allocated after
// it is made.
struct FlashWork {
    KMethod kmethod = KMethod::Srk;
    HMethod hmethod = HMethod::Srk;
    SrkState state;
    KvalueWork kv;
    SrkMixture feed;
    CompArray K{}, x{}, y{};
};

// Fills the methods of work from the setup.
void prepare_flash_work(const FlashSetup& setup, FlashWork& work);

// The algorithms with the caller's work space (FlashDispatch shares one).
int flash_tp(RunContext& ctx, const FlashSetup& setup, FlashStream& s, FlashWork& w);
int flash_pf(RunContext& ctx, const FlashSetup& setup, FlashStream& s, FlashWork& w);
int flash_tf(RunContext& ctx, const FlashSetup& setup, FlashStream& s, FlashWork& w);
int flash_ph(RunContext& ctx, const FlashSetup& setup, FlashStream& s, FlashWork& w);
int flash_ps(RunContext& ctx, const FlashSetup& setup, FlashStream& s, FlashWork& w);

}  // namespace velm
