// Of signing in and out.
export const words = {
  signInTitle: "Veuillez vous connecter", userName: "Nom", password: "Mot de passe",
  signIn: "Se connecter", signOut: "Se déconnecter", signedIn: "{0} ({1})",
  role_view: "consultation", role_confirm: "peut acquitter", role_engineer: "ingénieur",
  wrongPassword: "Nom et mot de passe ne correspondent pas.",
  tooManyAttempts: "Trop de tentatives. Veuillez attendre au moins une minute.",
  signInFailed: "Échec de la connexion : {0}",
};
