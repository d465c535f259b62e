// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/MagnusDesigns.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qrb {

namespace {

using std::numbers::pi;

constexpr double square(double x)
{
    return x * x;
}

} // namespace

CMagnusDesign designMagnusA(double G0, double edge, double Gb, double centre, double Gc)
{
    const double wb2 = square(2.0 * pi * std::min(0.48, edge));
    const double wc = 2.0 * pi * std::min(0.49, centre);
    const double wc2 = square(wc);
    const double A = square(G0);
    const double B = square(Gb);
    const double C = square(Gc);
    const double P = 2.0 * square(pi) * wb2 * wc2 * (C - A);
    const double Q = (square(square(pi)) + square(wc2)) * wb2 * (B - C);
    const double R = (square(wb2) + square(wc2)) * square(pi) * (A - B);
    const double N = (A * Q + B * P + C * R) / (Q + P + R);
    const double G1 = std::sqrt(N);

    const double u = square(std::tan(wc / 2.0));
    const double v = square(std::tan(wc2 / (2.0 * pi)));
    const double e = 1.0 / ((C - A) * v);
    const double m = std::sqrt((C - N) * (C - A)) * std::abs(v * e);
    const double t = u * m;
    const double n = (2.0 * (m - 1.0) - u * (A - N) * e) * u;
    const double d = std::sqrt(n);
    const double o = (A - N) * t * (C - A) * e;
    const double q = std::sqrt(N * n + (2.0 * G1 * (G0 - G1) - o) * t);
    return {{G1 + G0 * t + q, 2.0 * (G0 * t - G1), G1 + G0 * t - q}, {1.0 + t + d, 2.0 * (t - 1.0), 1.0 + t - d}};
}

CMagnusDesign designMagnusB(double G0, double edge, double Gb, double centre, double Gc)
{
    double p = std::min(0.99, 2.0 * centre);
    double r = std::min(0.98, 2.0 * edge);
    if (std::abs(p - 0.5) < 0.01) { // the formulae have a pole at a quarter of the rate
        p *= 0.99;
        r *= 0.99;
    }
    const double P2 = square(p);
    const double R2 = square(r);
    const double P4 = square(P2);
    const double A = square(G0);
    const double B = square(Gb);
    const double C = square(Gc);
    const double k1 = (C - B) * R2;
    const double k2 = (4.0 * P4 + 0.25) * k1;
    const double k3 = (1.0 + P4) * k1;
    const double k4 = (square(R2) + P4) * (B - A);
    const double k5 = A - C;
    const double k6 = 2.0 * P2 * k5 * R2;
    const double k7 = k4 + k6;
    const double k8 = C * k4 + B * k6;
    const double N = (A * k3 + k8) / (k3 + k7);
    const double M = (A * k2 + k8) / (k7 + k2);
    const double G1 = std::sqrt(N);

    const double T = square(std::tan(pi * p / 2.0));
    const double e = N - C;
    const double S = std::sqrt(k5 / e);
    const double h = M - C;
    const double i = 1.0 / (e * h);
    const double j = (N - M) * k5 + (A - M) * e * square(T);
    const double l = 2.0 * T * e;
    const double o = -k5 * l;
    const double q = l * h * S;
    const double U = std::sqrt((C * j + M * o + G0 * G1 * q) * i);
    const double V = std::sqrt((j + o + q) * i);
    const double W = G1 * S + G0 * T;
    return {{W + U, 2.0 * (G0 * T - G1 * S), W - U}, {T + S + V, 2.0 * (T - S), T + S - V}};
}

CMagnusDesign designMagnusC(double G0, double G, double Gb, double centre, double width)
{
    const double w = 2.0 * pi * centre;
    const double x = 2.0 * pi * width;
    const double A = square(G0);
    const double B = square(Gb);
    const double C = square(G);
    const double D = std::abs(C - B);
    const double E = std::abs(C - A);
    const double F = std::abs(B - A);
    const double k1 = square(pi) * F * square(x);
    const double k2 = square(square(w) - square(pi)) * D;
    const double G1 = std::sqrt((A * k2 + C * k1) / (k2 + k1));
    const double H = std::abs(C - square(G1));
    const double I = std::abs(C - G0 * G1);
    const double J = std::abs(B - G0 * G1);
    const double K = std::abs(B - square(G1));

    const double t = std::sqrt(H / E) * square(std::tan(w / 2.0));
    const double u = std::sqrt(F / K);
    const double v = (u * t + 1.0) * std::tan(x / 2.0);
    const double L = K * square(v) - 2.0 * t * (J - std::sqrt(F * K));
    const double O = 2.0 * t * (I - std::sqrt(H * E));
    const double m = std::sqrt((L + O) / D);
    const double n = std::sqrt((L * C + O * B) / D);
    const double y = G1 + G0 * t;
    return {{n + y, -2.0 * (G1 - G0 * t), y - n}, {m + 1.0 + t, -2.0 * (1.0 - t), 1.0 + t - m}};
}

} // namespace qrb
