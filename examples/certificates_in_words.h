// X.509 certificates for people.
#pragma once

#include "report.h"

#include <vector>

// Adds subject, issuer, validity and key of a DER certificate to `step`.
void DescribeCertificate(const std::vector<unsigned char>& der, Step& step);
