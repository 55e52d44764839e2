// Compiled with -mavx outside any level namespace: the VEX check must reject it.
extern "C" double vex_sample_sum(const double* x, const double* y) {
    return x[0] * y[0] + x[1] * y[1];
}
