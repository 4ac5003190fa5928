// The rotation of an anisotropic ellipsoid by azimuth, dip and plunge.
#pragma once

#include <cmath>

namespace nuvo {

// Rows u, v, w of the rotation matrix. An offset (dx, dy, dz) of the grid has the
// coordinates dx*u + dy*v + dz*w in the frame of the ellipsoid's axes; a point e
// of that frame lies at (u.e, v.e, w.e) in the grid (the matrix is orthonormal).
struct Rotation {
  double u[3], v[3], w[3];

  void toEllipsoidFrame(double dx, double dy, double dz, double *x, double *y, double *z) const {
    *x = dx * u[0] + dy * v[0] + dz * w[0];
    *y = dx * u[1] + dy * v[1] + dz * w[1];
    *z = dx * u[2] + dy * v[2] + dz * w[2];
  }

  void toGridFrame(const double e[3], double g[3]) const {
    g[0] = u[0] * e[0] + u[1] * e[1] + u[2] * e[2];
    g[1] = v[0] * e[0] + v[1] * e[1] + v[2] * e[2];
    g[2] = w[0] * e[0] + w[1] * e[1] + w[2] * e[2];
  }
};

// Angles in radians: azimuth, dip, plunge.
inline Rotation rotationOfRadians(double azimuth, double dip, double plunge) {
  double c1 = std::cos(azimuth), s1 = std::sin(azimuth);
  double c2 = std::cos(dip), s2 = std::sin(dip);
  double c3 = std::cos(plunge), s3 = std::sin(plunge);
  return Rotation{{c1 * c3 + s1 * s2 * s3, s1 * c2, s1 * s2 * c3 - c1 * s3},
                  {c1 * s2 * s3 - s1 * c3, c1 * c2, s1 * s3 + c1 * s2 * c3},
                  {c2 * s3, -s2, c2 * c3}};
}

// Angles in degrees.
inline Rotation rotationOf(double azimuth, double dip, double plunge) {
  constexpr double kDegree = 0.017453292519943295;
  return rotationOfRadians(azimuth * kDegree, dip * kDegree, plunge * kDegree);
}

}  // namespace nuvo
