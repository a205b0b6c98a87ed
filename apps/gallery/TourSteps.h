#pragma once
// The tour's steps, screen by screen. Each screen's file declares what a
// finger does on it and what the screen must show after each step; adding a
// screen to the tour is adding its steps here.

#include "Tour.h"

#include <vector>

namespace gallery {

std::vector<TourStep> homeSteps();
std::vector<TourStep> venueSteps();
std::vector<TourStep> menusSteps();
std::vector<TourStep> bookingsSteps();
std::vector<TourStep> toastsSteps();
std::vector<TourStep> boardingSteps();
std::vector<TourStep> cameraSteps();
std::vector<TourStep> formsSteps();
std::vector<TourStep> purseSteps();
std::vector<TourStep> pricesSteps();
std::vector<TourStep> flightsSteps();
std::vector<TourStep> guestSteps();
std::vector<TourStep> editLayersSteps();
std::vector<TourStep> farolSteps();
std::vector<TourStep> adminSteps();

// Every step, in the order the tour plays them.
std::vector<TourStep> tourSteps();

} // namespace gallery
