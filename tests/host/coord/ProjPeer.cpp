#include "tests/host/coord/ProjPeer.h"

#include <charconv>
#include <stdexcept>

namespace gpstest {

std::string Num(double v) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, v).ptr};
}

ProjPeer::ProjPeer() : context_(proj_context_create()) {
    proj_log_level(context_.get(), PJ_LOG_NONE);
    proj_context_set_enable_network(context_.get(), 0);
}

ProjPeer ProjPeer::Operation(const std::string& text) {
    ProjPeer peer;
    peer.pj_.reset(proj_create(peer.context_.get(), text.c_str()));
    if (!peer.pj_) throw std::runtime_error("PROJ refuses the operation " + text);
    peer.radians_ = proj_angular_input(peer.pj_.get(), PJ_FWD) != 0;
    return peer;
}

ProjPeer ProjPeer::Systems(const std::string& from, const std::string& to) {
    ProjPeer peer;
    peer.pj_.reset(proj_create_crs_to_crs(peer.context_.get(), from.c_str(), to.c_str(), nullptr));
    if (peer.pj_) peer.pj_.reset(proj_normalize_for_visualization(peer.context_.get(), peer.pj_.get()));
    if (!peer.pj_) throw std::runtime_error("PROJ has no way from " + from + " to " + to);
    return peer;
}

bool ProjPeer::Forward(double lat, double lon, double h, Triple& out) const {
    const double unit = radians_ ? kRad : 1;
    const PJ_COORD c = proj_trans(pj_.get(), PJ_FWD, proj_coord(lon * unit, lat * unit, h, 0));
    out = {c.xyz.x, c.xyz.y, c.xyz.z};
    return std::isfinite(out.a) && std::isfinite(out.b) && std::isfinite(out.c);
}

bool ProjPeer::Inverse(double x, double y, double z, Triple& out) const {
    const double unit = radians_ ? kRad : 1;
    const PJ_COORD c = proj_trans(pj_.get(), PJ_INV, proj_coord(x, y, z, 0));
    out = {c.lpz.phi / unit, c.lpz.lam / unit, c.lpz.z};
    return std::isfinite(out.a) && std::isfinite(out.b) && std::isfinite(out.c);
}

}  // namespace gpstest
